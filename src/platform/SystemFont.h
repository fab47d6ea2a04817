// The platform's "system font": one named family with fixed fallbacks for Chinese and emoji,
// sized in points of the phone (one point is one logical pixel). Labels and text measurement
// use the same fonts, so a size computed before any view exists is the size a label draws, on
// every machine that ran the project's install step.
#pragma once

#include <QFont>
#include <QStringList>

namespace platform {

class SystemFont
{
public:
    /// The primary family, then the fallbacks tried for characters it lacks.
    static QStringList families();

    /// The system font of `pointSize` points at `weight`.
    static QFont font(int pointSize, QFont::Weight weight = QFont::Normal);
    static QFont regular(int pointSize) { return font(pointSize, QFont::Normal); }
    static QFont bold(int pointSize) { return font(pointSize, QFont::Bold); }

    /// Makes the system font the application's default (17 points, as a phone's body text).
    /// Call once after the QGuiApplication exists; repeated calls do nothing more.
    static void install();

    /// True when the primary family is really present (false only before the install step ran).
    static bool isAvailable();
};

} // namespace platform
