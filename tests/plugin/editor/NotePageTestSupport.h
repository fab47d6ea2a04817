// Shared by the editor tests: a controller that records the actions the note page sends it, a
// data source of plain rows holding a text field each, and the plug-in's theme.
#pragma once

#include "kit/common/ZIQThemeManager.h"
#include "platform/TableView.h"
#include "platform/TableViewCell.h"
#include "platform/TableViewDataSource.h"
#include "platform/TextField.h"
#include "platform/ViewController.h"
#include "plugin/service/ZIQGroupNoteDefines.h"

#include <QPushButton>
#include <QStringList>

/// Answers to the page's actions by writing "<action> <sender's objectName> <text>" into `log`.
class RecordingEditorController : public platform::ViewController
{
    Q_OBJECT

public:
    QStringList log;

    Q_INVOKABLE void onEndEditTitle(platform::TextField *field) { record("onEndEditTitle", field, field->text()); }
    Q_INVOKABLE void onEndEditDesc(platform::TextField *field) { record("onEndEditDesc", field, field->text()); }
    Q_INVOKABLE void onAddExample(platform::TextField *field) { record("onAddExample", field, field->text()); }
    Q_INVOKABLE void onAddItem(QPushButton *button) { record("onAddItem", button, {}); }
    Q_INVOKABLE void onEndEditDeadlineSelector(QPushButton *button) { record("onEndEditDeadlineSelector", button, {}); }

private:
    void record(const char *action, QObject *sender, const QString &text)
    {
        log << QStringLiteral("%1 %2 %3").arg(QLatin1String(action), sender->objectName(), text).trimmed();
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

inline void registerPluginTheme()
{
    ZIQThemeManager::shareManager()->registerThemeResourcePath(
        QStringLiteral(":/%1.bundle").arg(ZIQGroupNoteThemeBundleName), ZIQGroupNoteThemeModule);
}
