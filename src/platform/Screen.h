// The main screen the program pretends to run on: its bounds in points and whether it is a
// phone. Sizes of the screens are fractions of this width, so a program sets it once (the demo:
// a phone of 375 x 812) and tests set the screen they need; width 0 means "no screen".
#pragma once

#include <QMarginsF>
#include <QRectF>
#include <QSizeF>

namespace platform {

enum class DeviceIdiom { Phone, Pad, Desktop };

class Screen
{
public:
    /// The main screen's bounds, origin (0, 0). Empty until a program or test sets a size.
    static QRectF bounds();
    static qreal width() { return bounds().width(); }
    static qreal height() { return bounds().height(); }
    static DeviceIdiom idiom();
    static bool isPhone() { return idiom() == DeviceIdiom::Phone; }

    static void setMainScreen(const QSizeF &size, DeviceIdiom idiom = DeviceIdiom::Phone);

    /// The safe-area insets of a phone of this size: a phone at least 812 points tall has a
    /// 44-point status area with a notch and a 34-point home indicator; smaller ones 20 and 0.
    static QMarginsF safeAreaInsets();

    /// Height of a navigation bar with its status area: 88 on a phone of at least
    /// 375 x 812, else 64.
    static qreal navigationBarHeight();
};

/// Sets the main screen for the lifetime of a scope and restores the previous one after it.
class ScreenScope
{
public:
    explicit ScreenScope(const QSizeF &size, DeviceIdiom idiom = DeviceIdiom::Phone);
    ~ScreenScope();
    ScreenScope(const ScreenScope &) = delete;
    ScreenScope &operator=(const ScreenScope &) = delete;

private:
    QSizeF m_previousSize;
    DeviceIdiom m_previousIdiom;
};

} // namespace platform
