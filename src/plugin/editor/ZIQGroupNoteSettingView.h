// The note's settings page: whether a member may add several entries, the deadline, and
// whether the group is told of new entries. Each row reports its action by name to the screen
// that owns the page (onSwitchMultiSubmit, onEditDeadline, onSwitchAllowNotify, each with the
// row's cell); the screen changes the note and hands the settings back through
// refreshWithSettings().
#pragma once

#include "kit/common/ZIQCommonCellData.h"
#include "platform/TableViewDataSource.h"
#include "platform/TableViewDelegate.h"
#include "plugin/model/ZIQGroupNoteSetting.h"

#include <QList>
#include <QWidget>

namespace platform {
class TableView;
}

class ZIQGroupNoteSettingView : public QWidget, public platform::TableViewDataSource, public platform::TableViewDelegate
{
    Q_OBJECT

public:
    static constexpr qreal RowHeight = 50;
    /// The table's height before the page is first laid out; after that it fills the page.
    static constexpr int InitialTableHeight = 394;

    /// `setting` may be null: a new note's page then shows its defaults (both switches on, no
    /// deadline).
    explicit ZIQGroupNoteSettingView(const ZIQGroupNoteSettingPtr &setting, QWidget *parent = nullptr);
    ~ZIQGroupNoteSettingView() override;

    platform::TableView *tableView() const { return m_tableView; }
    ZIQGroupNoteSettingPtr setting() const { return m_setting; }
    /// The rows, top to bottom: the multiple-entries switch, the deadline, the notify switch.
    QList<ZIQCommonCellDataPtr> dataList() const { return m_dataList; }

    /// Shows `setting` from now on: rebuilds the rows and reloads the table.
    void refreshWithSettings(const ZIQGroupNoteSettingPtr &setting);
    /// Builds the rows afresh from the setting.
    void setupDataList();
    /// The deadline as the page shows it, in the device's time zone. The year is the week-based
    /// year, so a deadline in the last days of December may read as the following year.
    QString deadlineDateStr() const;

    int numberOfRows(platform::TableView *tableView, int section) const override;
    platform::TableViewCell *cellForRow(platform::TableView *tableView, const platform::IndexPath &path) override;
    qreal heightForRow(platform::TableView *tableView, const platform::IndexPath &path) override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    ZIQCommonCellDataPtr switchRow(const char *titleKey, const QByteArray &action, bool on) const;
    ZIQCommonCellDataPtr deadlineRow() const;

    platform::TableView *m_tableView;
    ZIQGroupNoteSettingPtr m_setting;
    QList<ZIQCommonCellDataPtr> m_dataList;
};
