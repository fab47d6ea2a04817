// Shared by the editor tests: a screen that records the actions its views deliver to it, a data
// source of plain entry rows, the plug-in's theme, and pictures for people to look at.
#pragma once

#include "kit/common/ZIQCommonSwitchCell.h"
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/Screen.h"
#include "platform/Switch.h"
#include "platform/TableView.h"
#include "platform/TableViewCell.h"
#include "platform/TableViewDataSource.h"
#include "platform/TextField.h"
#include "platform/ViewController.h"
#include "plugin/provider/ZIQGroupNoteTextFieldCellData.h"
#include "plugin/service/ZIQGroupNoteDefines.h"

#include <QDir>
#include <QPushButton>
#include <QTest>

inline QString localized(const char *key)
{
    return ZIQGlobalization::getLocalizedStringForKey(QString::fromLatin1(key));
}

inline void registerPluginTheme()
{
    ZIQThemeManager::shareManager()->registerThemeResourcePath(
        QStringLiteral(":/%1.bundle").arg(ZIQGroupNoteThemeBundleName), ZIQGroupNoteThemeModule);
}

/// Saves `widget` as `name`.png into $ZIQ_PICTURES_DIR when that is set.
inline void savePicture(QWidget *widget, const QString &name)
{
    const QString dir = qEnvironmentVariable("ZIQ_PICTURES_DIR");
    if (!dir.isEmpty() && !name.isEmpty())
        QVERIFY(widget->grab().save(QDir(dir).filePath(name + QStringLiteral(".png"))));
}

/// Records every action with its sender and what it read off it: a text, an entry's content
/// or a switch's state.
class EditorTestController : public platform::ViewController
{
    Q_OBJECT

public:
    struct Call
    {
        QByteArray action;
        QObject *sender;
        QString seen;
    };
    QList<Call> calls;

    /// "<action> <sender's objectName> <seen>" per call.
    QStringList log() const
    {
        QStringList lines;
        for (const Call &call : calls)
            lines << QStringLiteral("%1 %2 %3")
                         .arg(QLatin1String(call.action), call.sender->objectName(), call.seen)
                         .trimmed();
        return lines;
    }

    Q_INVOKABLE void onEditItem(ZIQGroupNoteTextFieldCellData *data)
    {
        record("onEditItem", data, data->item()->content());
    }
    Q_INVOKABLE void onRepeatItem(ZIQGroupNoteTextFieldCellData *data) { record("onRepeatItem", data); }
    Q_INVOKABLE void onSwitchMultiSubmit(ZIQCommonSwitchCell *cell) { recordSwitch("onSwitchMultiSubmit", cell); }
    Q_INVOKABLE void onSwitchAllowNotify(ZIQCommonSwitchCell *cell) { recordSwitch("onSwitchAllowNotify", cell); }
    Q_INVOKABLE void onEditDeadline(QObject *cell) { record("onEditDeadline", cell); }
    Q_INVOKABLE void onEndEditTitle(platform::TextField *field) { record("onEndEditTitle", field, field->text()); }
    Q_INVOKABLE void onEndEditDesc(platform::TextField *field) { record("onEndEditDesc", field, field->text()); }
    Q_INVOKABLE void onAddExample(platform::TextField *field) { record("onAddExample", field, field->text()); }
    Q_INVOKABLE void onAddItem(QPushButton *button) { record("onAddItem", button); }
    Q_INVOKABLE void onEndEditDeadlineSelector(QPushButton *button) { record("onEndEditDeadlineSelector", button); }

private:
    void record(const char *action, QObject *sender, const QString &seen = {})
    {
        calls.append({ action, sender, seen });
    }
    void recordSwitch(const char *action, ZIQCommonSwitchCell *cell)
    {
        record(action, cell, cell->switcher()->isOn() ? QStringLiteral("on") : QStringLiteral("off"));
    }
};

/// `count` rows, each a plain cell whose content is one text field named "entryField<row>".
class EntryRows : public platform::TableViewDataSource
{
public:
    int count = 0;

    int numberOfRows(platform::TableView *, int) const override { return count; }
    platform::TableViewCell *cellForRow(platform::TableView *table, const platform::IndexPath &path) override
    {
        platform::TableViewCell *cell = table->dequeueReusableCell(QStringLiteral("itemCell"));
        auto *field = cell->contentView()->findChild<platform::TextField *>();
        if (!field) {
            field = new platform::TextField(cell->contentView());
            field->setGeometry(16, 8, 200, 42);
        }
        field->setObjectName(QStringLiteral("entryField%1").arg(path.row));
        field->setText(QStringLiteral("%1. Entry").arg(path.row + 1));
        return cell;
    }
};
