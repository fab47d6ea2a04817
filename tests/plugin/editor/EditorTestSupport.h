// Shared by the editor tests: a screen owning the views under test that records the actions
// they deliver to it, and pictures for people to look at.
#pragma once

#include "kit/common/ZIQCommonSwitchCell.h"
#include "kit/common/ZIQGlobalization.h"
#include "platform/Screen.h"
#include "platform/Switch.h"
#include "platform/ViewController.h"
#include "plugin/provider/ZIQGroupNoteTextFieldCellData.h"

#include <QDir>
#include <QTest>

inline QString localized(const char *key)
{
    return ZIQGlobalization::getLocalizedStringForKey(QString::fromLatin1(key));
}

/// Saves `widget` as `name`.png into $ZIQ_PICTURES_DIR when that is set.
inline void savePicture(QWidget *widget, const QString &name)
{
    const QString dir = qEnvironmentVariable("ZIQ_PICTURES_DIR");
    if (!dir.isEmpty() && !name.isEmpty())
        QVERIFY(widget->grab().save(QDir(dir).filePath(name + QStringLiteral(".png"))));
}

class EditorTestController : public platform::ViewController
{
    Q_OBJECT

public:
    /// An action, its argument, and what the screen read off it: an entry's content or a
    /// switch's state.
    struct Call
    {
        QByteArray action;
        QObject *sender;
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
    Q_INVOKABLE void onRepeatItem(ZIQGroupNoteTextFieldCellData *data) { calls.append({ "onRepeatItem", data, {} }); }
    Q_INVOKABLE void onSwitchMultiSubmit(ZIQCommonSwitchCell *cell) { recordSwitch("onSwitchMultiSubmit", cell); }
    Q_INVOKABLE void onSwitchAllowNotify(ZIQCommonSwitchCell *cell) { recordSwitch("onSwitchAllowNotify", cell); }
    Q_INVOKABLE void onEditDeadline(QObject *cell) { calls.append({ "onEditDeadline", cell, {} }); }

    QList<Call> calls;

private:
    void recordSwitch(const QByteArray &action, ZIQCommonSwitchCell *cell)
    {
        calls.append({ action, cell, cell->switcher()->isOn() ? QStringLiteral("on") : QStringLiteral("off") });
    }
};
