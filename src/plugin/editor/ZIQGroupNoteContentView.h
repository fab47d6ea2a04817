// The editor's note page. While a note is composed it shows input fields for the title, the
// description and the format example; over an existing note it shows the creator line, the title
// and description as text and, when set, the deadline and the example. Below them the entries
// table and the button that adds an entry. The page only displays and reports: every user action
// is handed by name to the view controller that owns the page, which edits the note and asks the
// page to refresh.
#pragma once

#include "plugin/editor/ZIQGroupNotePageGeometry.h"
#include "plugin/model/ZIQGroupNoteInfo.h"

#include <QByteArray>
#include <QList>
#include <QWidget>

class QLabel;
class QPushButton;
class ZIQGroupNoteDeadlineButton;
class ZIQGroupNoteTitleInputView;

namespace platform {
class ImageView;
class TableView;
class TextField;
} // namespace platform

class ZIQGroupNoteContentView : public QWidget
{
    Q_OBJECT

public:
    /// Delay before a new or reloaded last row is scrolled into view.
    static constexpr int ScrollDelayMs = 300;

    /// Shows `info` (a new empty note when null) in the creating face when `isCreateNew`.
    ZIQGroupNoteContentView(const ZIQGroupNoteInfoPtr &info, bool isCreateNew, QWidget *parent = nullptr);

    ZIQGroupNoteInfoPtr info() const { return m_info; }
    bool isCreateNew() const { return m_isCreateNew; }

    /// Switches face and shows the note's current state everywhere: texts, creator line, add
    /// button, deadline chip; the example field is editable only while creating. Reloads the table.
    void refreshWithCreateNew(bool isCreateNew);
    /// The creator line: "started by … · n joined" and the creator's avatar.
    void refreshInfoView();
    /// The add button's image: enabled while the note takes entries from the current user.
    void refreshAddButton();
    /// The deadline chip's title and width (see ZIQGroupNoteDeadlineButton).
    void refreshDeadlineButton();
    void reloadTableView();
    /// Tells the page the controller now has `count` entry rows. With `updateByAddNew` one row
    /// was appended: it is inserted only when the table holds exactly one row less, and once
    /// scrolled into view its text field takes the focus. Without it the table reloads. Either
    /// way the last row is scrolled to the bottom ScrollDelayMs later. A count of 0 or less is
    /// ignored.
    void reloadTableViewWithCellCount(qint64 count, bool updateByAddNew);
    qint64 localCellCount() const { return m_localCellCount; }

    /// The entries table; the controller registers its cell kind under "itemCell" and is its
    /// data source and delegate.
    platform::TableView *itemTableView() const { return m_itemTableView; }

    /// The title, description and example fields, in that order.
    QList<platform::TextField *> infoTextFields() const { return m_infoTextFields; }
    /// Whether focusing `textField` should move the screen above the keyboard: only the entry
    /// rows' fields do; the page's own fields sit high enough.
    bool needRespondToKeyboardAnimation(const QWidget *textField) const;

    /// The entries table's height: its rows, but no more than the page leaves above the add button.
    float itemTableViewHeight() const;
    /// Free room under the add button, less a margin of 20; the controller compares it with the
    /// keyboard's height.
    float bottomBlankHeight() const;

    // Names of the owning controller's actions, each invoked with the sending field or button
    // when the controller answers to it.
    QByteArray onEndEditTitleSelector() const { return m_onEndEditTitleSelector; }
    void setOnEndEditTitleSelector(const QByteArray &action) { m_onEndEditTitleSelector = action; }
    QByteArray onEndEditDescSelector() const { return m_onEndEditDescSelector; }
    void setOnEndEditDescSelector(const QByteArray &action) { m_onEndEditDescSelector = action; }
    QByteArray onEndEditDeadlineSelector() const { return m_onEndEditDeadlineSelector; }
    void setOnEndEditDeadlineSelector(const QByteArray &action) { m_onEndEditDeadlineSelector = action; }
    QByteArray onAddExampleSelector() const { return m_onAddExampleSelector; }
    void setOnAddExampleSelector(const QByteArray &action) { m_onAddExampleSelector = action; }
    QByteArray onAddItemSelector() const { return m_onAddItemSelector; }
    void setOnAddItemSelector(const QByteArray &action) { m_onAddItemSelector = action; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void buildInfoLine();
    void buildTitleView();
    void buildExampleRow();
    void buildItemTable();
    void buildAddButton();
    void applyTheme();
    void applyAlignment();
    void setupViews();
    void fillTexts();
    ZIQGroupNotePageGeometry::Face face() const;
    void layoutPage();
    void showInfoText();
    void setAddButtonEnabledImage(bool enabled);
    void textFieldEditChanged(platform::TextField *field);
    void onAddButtonClicked();
    void onDeadlineButtonClicked();
    void performSelectorOnVC(const QByteArray &action, QObject *object);
    void focusRow(int row, bool retryAfterScroll);

    ZIQGroupNoteInfoPtr m_info;
    bool m_isCreateNew = false;
    qint64 m_localCellCount = 0;
    /// The creator line's whole text; the label shows it shortened in the middle when too wide.
    QString m_infoText;

    ZIQGroupNoteTitleInputView *m_titleInputView = nullptr;
    platform::TextField *m_titleTextField = nullptr;
    platform::TextField *m_descTextField = nullptr;
    QWidget *m_infoView = nullptr;
    platform::ImageView *m_creatorAvatarView = nullptr;
    QLabel *m_infoLabel = nullptr;
    QWidget *m_bottomLine = nullptr;
    QWidget *m_titleView = nullptr;
    QLabel *m_titleLabel = nullptr;
    QLabel *m_descLabel = nullptr;
    ZIQGroupNoteDeadlineButton *m_deadlineButton = nullptr;
    QWidget *m_exampleView = nullptr;
    QLabel *m_tipsLabel = nullptr;
    platform::TextField *m_hintTextField = nullptr;
    platform::TableView *m_itemTableView = nullptr;
    QPushButton *m_addButton = nullptr;
    QList<platform::TextField *> m_infoTextFields;

    QByteArray m_onEndEditTitleSelector;
    QByteArray m_onEndEditDescSelector;
    QByteArray m_onEndEditDeadlineSelector;
    QByteArray m_onAddExampleSelector;
    QByteArray m_onAddItemSelector;
};
