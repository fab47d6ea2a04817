// A guided run through a group note as the user lives it, with a picture after every step: the
// "more" panel, composing a note, its card, others joining, the editor following them live,
// editing and emptying entries, a deadline set with the picker, and the note after it. The
// screens are driven with mouse clicks and typing, and time runs on a manual clock the tour
// advances itself, so every pause and animation passes at once and every run is the same.
#pragma once

#include "DemoCast.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>

class QWidget;
class ZIQConversationListViewController;
class ZIQGroupNoteViewController;

namespace platform {
class ManualClock;
class NavigationController;
} // namespace platform

class DemoTour : public QObject
{
    Q_OBJECT

public:
    /// Time the tour gives each step to settle before its picture.
    static constexpr int SettleMs = 800;

    struct Step
    {
        /// The picture's name, without its number; no picture when empty.
        QString name;
        /// Acts as the user; false when a screen or control the step needs is missing.
        std::function<bool()> act;
        /// How much clock time the step takes before its picture.
        int settleMs = SettleMs;
    };

    /// `clock` is installed for the whole run; `userID` is logged in on the process's client.
    DemoTour(platform::ManualClock *clock, platform::NavigationController *navigation,
        ZIQConversationListViewController *list, DemoCast *cast, const QString &userID, const QString &directory,
        QObject *parent = nullptr);

    /// The steps in order: the n-th picture is "NN-name.png" with n counted from 01.
    QList<Step> steps();
    /// Plays the steps, then calls `done` with whether every picture was written.
    void run(std::function<void(bool written)> done);

private:
    void runStep(int index);
    /// Advances the clock by `ms` in small turns, letting the event loop deliver between them.
    void settle(int ms, std::function<void()> then);
    void finish(bool ok);

    QWidget *topView() const;
    ZIQGroupNoteViewController *editor() const;
    /// Clicks the visible widget named `name` on the top screen (the bottom-most one when several).
    bool click(const QString &name);
    /// Clicks the bottom-most visible join button of a note card in the chat.
    bool openCard();
    /// Types into the top screen's entry fields the user may edit: `texts` in order, an empty
    /// text clearing its field; null strings leave a field alone.
    bool typeOwnEntries(const QStringList &texts);
    bool typeIntoLastEntry(const QString &text);
    /// Played members of the group add their entries to the user's note.
    bool playJoiners(const QStringList &joiners);

    bool enterChat();
    bool openChat();
    bool reopenChat();
    bool composeNote();
    bool openDeadlineRow();
    bool turnMinuteWheel();

    platform::ManualClock *m_clock;
    QPointer<platform::NavigationController> m_navigation;
    QPointer<ZIQConversationListViewController> m_list;
    QPointer<DemoCast> m_cast;
    QString m_userID;
    QString m_directory;
    QString m_noteID;
    QList<Step> m_steps;
    int m_pictures = 0;
    std::function<void(bool)> m_done;
};
