// Shared by the editor tests: a screen that owns the views under test and records every action
// they deliver to it, on a phone-sized window, with the test's own user logged in.
#pragma once

#include "plugin/provider/ZIQGroupNoteTextFieldCellData.h"

#include "kit/common/ZIQCommonSwitchCell.h"
#include "kit/common/ZIQGlobalization.h"
#include "platform/Screen.h"
#include "platform/Switch.h"
#include "platform/ViewController.h"

#include <QDir>
#include <QTest>

inline QString localized(const char *key)
{
    return ZIQGlobalization::getLocalizedStringForKey(QString::fromLatin1(key));
}

/// Saves `widget` as `name`.png into $ZIQ_PICTURES_DIR when that is set, for people to look at.
inline void savePicture(QWidget *widget, const QString &name)
{
    if (qEnvironmentVariableIsEmpty("ZIQ_PICTURES_DIR"))
        return;
    QVERIFY(
        widget->grab().save(QDir(qEnvironmentVariable("ZIQ_PICTURES_DIR")).filePath(name + QStringLiteral(".png"))));
}

/// The darkest lightness (0 … 255) among the pixels of `area` in `image`.
inline int darkestLightness(const QImage &image, const QRect &area)
{
    int darkest = 255;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            darkest = qMin(darkest, QColor(image.pixel(x, y)).lightness());
    }
    return darkest;
}

class EditorTestController : public platform::ViewController
{
    Q_OBJECT

public:
    struct Call
    {
        QByteArray action;
        QObject *sender;
        /// What the screen could read off the sender when called: an entry's content, a
        /// switch's state ("on"/"off"), nothing for a plain tap.
        QString seen;
    };

    EditorTestController()
    {
        view()->resize(int(platform::Screen::width()), int(platform::Screen::height()));
        view()->show();
    }

    Q_INVOKABLE void onEditItem(ZIQGroupNoteTextFieldCellData *data)
    {
        calls.append({ "onEditItem", data, data->item()->content() });
    }
    Q_INVOKABLE void onRepeatItem(ZIQGroupNoteTextFieldCellData *data)
    {
        calls.append({ "onRepeatItem", data, data->item()->content() });
    }
    Q_INVOKABLE void onSwitchMultiSubmit(ZIQCommonSwitchCell *cell) { recordSwitch("onSwitchMultiSubmit", cell); }
    Q_INVOKABLE void onSwitchAllowNotify(ZIQCommonSwitchCell *cell) { recordSwitch("onSwitchAllowNotify", cell); }
    Q_INVOKABLE void onEditDeadline(QObject *cell) { calls.append({ "onEditDeadline", cell, QString() }); }

    QList<Call> calls;

private:
    void recordSwitch(const QByteArray &action, ZIQCommonSwitchCell *cell)
    {
        calls.append({ action, cell, cell->switcher()->isOn() ? QStringLiteral("on") : QStringLiteral("off") });
    }
};
