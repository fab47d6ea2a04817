// Invariant checks of the fuzz targets: a violated one prints what broke and aborts, which the
// fuzzer reports as a crash and the corpus replay as a failed test.
#pragma once

#include <QDebug>

#include <cstdlib>

/// `what` is streamed to the log: pass values joined with <<.
#define FUZZ_CHECK(condition, what)                                                                                    \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            qCritical().noquote() << "invariant broken:" << #condition << "at" << __FILE__ << __LINE__;                \
            qCritical() << what;                                                                                       \
            std::abort();                                                                                              \
        }                                                                                                              \
    } while (false)
