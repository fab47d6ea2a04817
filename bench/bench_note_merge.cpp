// Merging a note message's extensions into the note: the most the service keeps on one message
// (300 keys) and a note far past that, to show the merge grows as n log n.
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/model/ZIQGroupNoteInfo.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

namespace {

// 20 authors; every third entry was edited once on the sequence path (two generations), every
// seventh of those was edited again, and every tenth entry was deleted by a marker generation.
QList<V2VORMessageExtension> noteExtensions(qsizetype count)
{
    QList<V2VORMessageExtension> list;
    list.append({ ZIQGroupNoteExtensionKey::configKey,
        QStringLiteral(R"({"multi_submit": true, "notify": true, "deadline": 0})") });
    for (int entry = 0; list.size() < count; ++entry) {
        const QString userID = QStringLiteral("user_%1").arg(entry % 20);
        const double created = 1700000000000.0 + entry * 977 % 100000;
        int generations = entry % 3 == 0 ? (entry % 7 == 0 ? 3 : 2) : 1;
        for (int generation = 0; generation < generations && list.size() < count; ++generation)
            list.append({ ZIQGroupNoteExtensionKey::entryKey(userID, created, generation),
                QStringLiteral("entry %1, edit %2").arg(entry).arg(generation) });
        if (entry % 10 == 0 && list.size() < count)
            list.append({ ZIQGroupNoteExtensionKey::entryKey(userID, created, generations),
                ZIQGroupNoteExtensionKey::deletedMarker });
    }
    std::shuffle(list.begin(), list.end(), std::mt19937(42));
    return list;
}

void BM_NoteMerge(benchmark::State &state)
{
    const QList<V2VORMessageExtension> list = noteExtensions(state.range(0));
    for (auto _ : state) {
        ZIQGroupNoteInfo info;
        benchmark::DoNotOptimize(info.mergeExtensionList(list));
        benchmark::DoNotOptimize(info.items().size());
    }
    state.SetComplexityN(state.range(0));
}

} // namespace

BENCHMARK(BM_NoteMerge)
    ->Arg(300)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(9)
    ->ReportAggregatesOnly(true);

BENCHMARK_MAIN();
