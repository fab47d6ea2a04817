// Shared by the editor tests: their common set-up, a screen that records the actions its views
// deliver to it, a data source of blank entry rows, and pictures for people to look at.
#pragma once

#include "kit/common/ZIQCommonSwitchCell.h"
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/Screen.h"
#include "platform/Switch.h"
#include "platform/SystemFont.h"
#include "platform/TableView.h"
#include "platform/TableViewCell.h"
#include "platform/TableViewDataSource.h"
#include "platform/TextField.h"
#include "platform/ToastCenter.h"
#include "platform/ViewController.h"
#include "plugin/provider/ZIQGroupNoteTextFieldCellData.h"
#include "plugin/service/ZIQGroupNoteDefines.h"

#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimeZone>
#include <QToolButton>

#include <unicode/timezone.h>

inline QString localized(const char *key)
{
    return ZIQGlobalization::getLocalizedStringForKey(QString::fromLatin1(key));
}

/// Fonts, the plug-in's theme, English texts, and a device in Shanghai's zone: eight hours ahead
/// of UTC all year.
inline void setUpEditorTests()
{
    platform::SystemFont::install();
    ZIQThemeManager::shareManager()->registerThemeResourcePath(
        QStringLiteral(":/%1.bundle").arg(ZIQGroupNoteThemeBundleName), ZIQGroupNoteThemeModule);
    ZIQGlobalization::setPreferredLanguage(QStringLiteral("en"));
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("Asia/Shanghai"));
}

inline double shanghaiMs(int year, int month, int day, int hour, int minute)
{
    return double(
        QDateTime(QDate(year, month, day), QTime(hour, minute), QTimeZone("Asia/Shanghai")).toMSecsSinceEpoch());
}

/// What ToastCenter::toastShown reports for a text refused as over-long.
inline QVariantList limitToast()
{
    return { localized("ZIQGroupNoteTextFieldExceedLimit"), 3000, int(platform::ToastPosition::Center) };
}

/// Saves `widget` as `name`.png into $ZIQ_PICTURES_DIR when that is set.
inline void savePicture(QWidget *widget, const QString &name)
{
    const QString dir = qEnvironmentVariable("ZIQ_PICTURES_DIR");
    if (!dir.isEmpty() && !name.isEmpty())
        QVERIFY(widget->grab().save(QDir(dir).filePath(name + QStringLiteral(".png"))));
}

/// Records every action as "<action> <sender's objectName> <what it read off the sender>": a
/// text, an entry's content or a switch's state.
class EditorTestController : public platform::ViewController
{
    Q_OBJECT

public:
    QStringList log;

    Q_INVOKABLE void onEditItem(ZIQGroupNoteTextFieldCellData *data)
    {
        record("onEditItem", data, data->item()->content());
    }
    Q_INVOKABLE void onRepeatItem(ZIQGroupNoteTextFieldCellData *data) { record("onRepeatItem", data); }
    Q_INVOKABLE void onSwitchMultiSubmit(ZIQCommonSwitchCell *cell) { record("onSwitchMultiSubmit", cell); }
    Q_INVOKABLE void onSwitchAllowNotify(ZIQCommonSwitchCell *cell) { record("onSwitchAllowNotify", cell); }
    Q_INVOKABLE void onEditDeadline(QObject *cell) { record("onEditDeadline", cell); }
    Q_INVOKABLE void onEndEditTitle(platform::TextField *field) { record("onEndEditTitle", field, field->text()); }
    Q_INVOKABLE void onEndEditDesc(platform::TextField *field) { record("onEndEditDesc", field, field->text()); }
    Q_INVOKABLE void onAddExample(platform::TextField *field) { record("onAddExample", field, field->text()); }
    Q_INVOKABLE void onAddItem(QPushButton *button) { record("onAddItem", button); }
    Q_INVOKABLE void onEndEditDeadlineSelector(QPushButton *button) { record("onEndEditDeadlineSelector", button); }

private:
    void record(const char *action, QObject *sender, const QString &seen = {})
    {
        log << QStringLiteral("%1 %2 %3").arg(QLatin1String(action), sender->objectName(), seen).trimmed();
    }
    void record(const char *action, ZIQCommonSwitchCell *cell)
    {
        record(action, cell, cell->switcher()->isOn() ? QStringLiteral("on") : QStringLiteral("off"));
    }
};

/// `count` blank rows.
class EntryRows : public platform::TableViewDataSource
{
public:
    int count = 0;

    int numberOfRows(platform::TableView *, int) const override { return count; }
    platform::TableViewCell *cellForRow(platform::TableView *table, const platform::IndexPath &) override
    {
        return table->dequeueReusableCell(QStringLiteral("itemCell"));
    }
};
