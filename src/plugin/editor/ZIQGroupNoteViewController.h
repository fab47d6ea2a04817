// The note's editor screen: a new note is composed here, and an existing one is opened to add,
// repeat, edit or empty entries and, for its creator, to change its settings. The screen owns
// the note's data provider; its pages (note, settings) only display and report, and every action
// they report becomes one call on the provider followed by a refresh of the pages. "Send" hands
// the edited note to the provider's submission.
#pragma once

#include "plugin/provider/ZIQGroupNoteDataProvider.h"

#include "platform/TableViewDataSource.h"
#include "platform/TableViewDelegate.h"
#include "platform/ViewController.h"

#include <QPointer>
#include <QPushButton>

class ZIQGroupNoteContentView;
class ZIQGroupNoteKeyboardAvoider;
class ZIQGroupNoteMenuView;
class ZIQGroupNoteSettingView;
class ZIQGroupNoteTextFieldCellData;
namespace platform {
class TextField;
}

class ZIQGroupNoteViewController : public platform::ViewController,
                                   public platform::TableViewDataSource,
                                   public platform::TableViewDelegate
{
    Q_OBJECT

public:
    /// The Send button stays disabled this long after a tap: the guard against double sends.
    static constexpr int SendGuardMs = 2000;
    /// The in-process notification posted after a successful send, with {"msgID": first message ID}.
    static inline const QString GroupNoteUpdatedNotification = QStringLiteral("groupNoteUpdated");

    /// `groupID` is where the note is submitted; `message` is the note, or a tips message that
    /// points at it, null for a new note. A tips row passes its own message ID as `groupID`;
    /// the note message found through the provider then names the real group.
    ZIQGroupNoteViewController(
        const QString &groupID, const V2VORMessagePtr &message, bool isCreateNew, QObject *parent = nullptr);
    ~ZIQGroupNoteViewController() override;

    QString groupID() const { return m_groupID; }
    bool isCreateNew() const { return m_isCreateNew; }
    ZIQGroupNoteDataProvider *dataProvider() const { return m_dataProvider; }
    bool isKeyboardVisible() const;

    ZIQGroupNoteMenuView *menuView();
    ZIQGroupNoteSettingView *settingView();
    ZIQGroupNoteContentView *contentView();
    QPushButton *submitButton() const { return m_submitButton; }

    /// The application language the deadline picker speaks: "zh-Hans", "zh-Hant" or "en".
    static QString applicationLanguage();

    // Actions the pages report, each with the field, button, row or row data that sent it.
    Q_INVOKABLE void onEndEditTitle(platform::TextField *field);
    Q_INVOKABLE void onEndEditDesc(platform::TextField *field);
    Q_INVOKABLE void onAddExample(platform::TextField *field);
    Q_INVOKABLE void onEndEditDeadlineSelector(QObject *sender);
    Q_INVOKABLE void onAddItem(QObject *sender);
    Q_INVOKABLE void onEditItem(ZIQGroupNoteTextFieldCellData *data);
    Q_INVOKABLE void onRepeatItem(ZIQGroupNoteTextFieldCellData *data);
    Q_INVOKABLE void onSwitchMultiSubmit(QObject *switchCell);
    Q_INVOKABLE void onSwitchAllowNotify(QObject *switchCell);
    Q_INVOKABLE void onEditDeadline(QObject *sender);
    /// The Send button.
    Q_INVOKABLE void onRightButtonClicked(QObject *sender = nullptr);

    // The entries table of the note page.
    int numberOfRows(platform::TableView *table, int section) const override;
    platform::TableViewCell *cellForRow(platform::TableView *table, const platform::IndexPath &path) override;
    qreal heightForRow(platform::TableView *table, const platform::IndexPath &path) override;

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewDidDisappear(bool animated) override;
    void viewDidLayoutSubviews() override;

private:
    void setUpNavigationBar();
    void setUpViews();
    void updateViews();
    /// Every page shows the note as the provider now holds it.
    void refreshPages();
    void switchViewsToHidden(bool hidden);
    void refreshByNewestStatistics();
    /// The note takes one entry per member and this member already has one.
    bool refusesAnotherEntry() const;
    void showDeadlinePicker();
    void deadlinePicked(const QDateTime &date);
    QString submissionGroupID() const;
    void submitFinished(int code, const QString &desc);
    static bool switchState(QObject *switchCell);

    QString m_groupID;
    bool m_isCreateNew = false;
    ZIQGroupNoteDataProvider *m_dataProvider = nullptr;
    QPointer<ZIQGroupNoteMenuView> m_menuView;
    QPointer<ZIQGroupNoteSettingView> m_settingView;
    QPointer<ZIQGroupNoteContentView> m_contentView;
    QPointer<QPushButton> m_submitButton;
    ZIQGroupNoteKeyboardAvoider *m_keyboardAvoider = nullptr;
};
