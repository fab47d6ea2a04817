// Figures the benchmarks report beside wall-clock time: processor time and percentiles.
#pragma once

#include <algorithm>
#include <ctime>
#include <vector>

/// Milliseconds of processor time on `clock`: the machine may be busy with other work.
inline double cpuMs(clockid_t clock = CLOCK_PROCESS_CPUTIME_ID)
{
    timespec now {};
    clock_gettime(clock, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

/// The value below which `fraction` of `values` lie; 0 for none.
inline double percentile(std::vector<double> values, double fraction)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, size_t(fraction * double(values.size())))];
}
