// Shared by the benchmarks that drive screens: the application they run in (offscreen, on the
// phone's screen, with the deterministic fonts and the plug-in's chatter muted) and the figures
// they report beside wall-clock time.
#pragma once

#include "BenchFigures.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"

#include <QApplication>
#include <QFile>
#include <QLoggingCategory>

#include <unistd.h>

/// The process a screen benchmark runs in.
struct PhoneBenchApplication
{
    static inline const QSize Phone { 375, 812 };

    PhoneBenchApplication(int &argc, char **argv)
        : app(offscreenUnlessTold(argc), argv)
    {
        QLoggingCategory::setFilterRules(QStringLiteral("ziq.*.debug=false\nziq.*.info=false"));
        platform::SystemFont::install();
    }

    QApplication app;
    platform::ScreenScope screen { Phone };

private:
    /// Chooses the offscreen platform unless the environment names one; passes `argc` on.
    static int &offscreenUnlessTold(int &argc)
    {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        return argc;
    }
};

inline double residentMegabytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const double pages = statm.readAll().split(' ').value(1).toDouble();
    return pages * double(sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}
