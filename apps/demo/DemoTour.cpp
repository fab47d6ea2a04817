#include "DemoTour.h"

#include "DemoCast.h"
#include "DemoNoteScene.h"
#include "DemoScreenshots.h"
#include "DemoWorld.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQChatInputController.h"
#include "kit/chat/ZIQChatMorePanel.h"
#include "kit/chat/ZIQConversationList.h"
#include "kit/chat/ZIQConversationListViewController.h"
#include "platform/ManualClock.h"
#include "platform/NavigationController.h"
#include "platform/NotificationCenter.h"
#include "platform/TableView.h"
#include "platform/TextField.h"
#include "plugin/editor/ZIQGroupNoteContentView.h"
#include "plugin/editor/ZIQGroupNoteSettingView.h"
#include "plugin/editor/ZIQGroupNoteTextFieldCell.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <algorithm>

namespace {

/// A turn of the tour's clock: short enough that animations draw their frames in order.
constexpr int TickMs = 50;
constexpr int MaxTurns = 100;
/// A toast's time on screen, with its fade.
constexpr int ToastGoneMs = 2500;
/// Minutes the deadline is set ahead of the moment it is picked; the wheel starts one ahead.
constexpr int DeadlineStepsAhead = 4;

/// The visible widgets of `root` named `name`, top to bottom on screen.
template<class Widget> QList<Widget *> visibleNamed(QWidget *root, const QString &name)
{
    QList<Widget *> found;
    if (!root)
        return found;
    for (Widget *widget : root->findChildren<Widget *>(name)) {
        if (widget->isVisible())
            found.append(widget);
    }
    std::stable_sort(found.begin(), found.end(), [root](const QWidget *a, const QWidget *b) {
        return a->mapTo(root, QPoint()).y() < b->mapTo(root, QPoint()).y();
    });
    return found;
}

bool missing(const char *what)
{
    qWarning() << "tour: no" << what << "on screen";
    return false;
}

} // namespace

DemoTour::DemoTour(platform::ManualClock *clock, platform::NavigationController *navigation,
    ZIQConversationListViewController *list, DemoCast *cast, const QString &userID, const QString &directory,
    QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_navigation(navigation)
    , m_list(list)
    , m_cast(cast)
    , m_userID(userID)
    , m_directory(directory)
{
    // A successful send names the note; the played members join that one.
    platform::NotificationCenter::defaultCenter().addObserver(
        this, ZIQGroupNoteViewController::GroupNoteUpdatedNotification, [this](const platform::Notification &note) {
            if (m_noteID.isEmpty())
                m_noteID = note.userInfo.value(QStringLiteral("msgID")).toString();
        });
}

QList<DemoTour::Step> DemoTour::steps()
{
    const QString me = DemoWorld::nickNameOf(m_userID);
    const DemoNoteScene::Script script = DemoWorld::noteScript(m_userID);
    const QStringList others = QStringList { script.author } + script.joiners;
    const int joinMs = DemoNoteScene::JoinPauseMs * 3;
    // Long enough for the send's toast to go, so the picture shows the card unhidden.
    const int sendMs = ZIQGroupNoteViewController::SendGuardMs + ToastGoneMs;
    const auto send = [this] { return click(QStringLiteral("sendButton")); };
    return {
        { QStringLiteral("more-panel"), [this] { return openChat(); } },
        { QStringLiteral("new-note"), [this] { return composeNote(); } },
        { {}, send, sendMs },
        // Back in the chat, which took in the note while the editor covered it.
        { QStringLiteral("card"), [] { return true; } },
        { {}, [this, others] { return playJoiners(others.mid(0, 2)); }, joinMs },
        { QStringLiteral("others-joined"), [this] { return reopenChat(); } },
        // An open editor keeps the entries it opened with; the member's entry is merged when
        // the user sends.
        { QStringLiteral("editor-open"), [this, others] { return openCard() && playJoiners(others.mid(2)); }, joinMs },
        { {},
            [this, me] {
                return typeOwnEntries({ me + QStringLiteral(", first aid kit and plasters"), QStringLiteral("") });
            } },
        { QStringLiteral("edited-sent"), send, sendMs },
        { {}, [this] { return openCard(); } },
        { {}, [this] { return openDeadlineRow(); } },
        { QStringLiteral("deadline-picker"), [this] { return turnMinuteWheel(); } },
        { QStringLiteral("deadline-set"), [this] { return click(QStringLiteral("doneBtn")); } },
        // The deadline goes out with the note; the clock passes it before the note is opened again.
        { {}, send, sendMs },
        { {}, [] { return true; }, (DeadlineStepsAhead + 2) * 60 * 1000 },
        { {}, [this] { return openCard(); } },
        { QStringLiteral("after-deadline"), [this] { return click(QStringLiteral("repeatButton")); }, 300 },
    };
}

void DemoTour::run(std::function<void(bool written)> done)
{
    m_done = std::move(done);
    if (!QDir().mkpath(m_directory)) {
        qWarning().noquote() << "cannot create" << m_directory;
        return finish(false);
    }
    m_steps = steps();
    // The list's rows and faces arrive over a few turns after login.
    settle(SettleMs, [this] { runStep(0); });
}

void DemoTour::runStep(int index)
{
    if (index >= m_steps.size())
        return finish(true);
    const Step &step = m_steps.at(index);
    if (!step.act()) {
        qWarning().noquote() << "tour: step" << index + 1 << step.name << "could not be played";
        return finish(false);
    }
    settle(step.settleMs, [this, index] {
        const Step &step = m_steps.at(index);
        if (!step.name.isEmpty()) {
            const QString name = QStringLiteral("%1-%2.png").arg(++m_pictures, 2, 10, QLatin1Char('0')).arg(step.name);
            if (!m_navigation || !DemoScreenshots::save(m_navigation->view(), m_directory, name))
                return finish(false);
        }
        runStep(index + 1);
    });
}

void DemoTour::settle(int ms, std::function<void()> then)
{
    // Each turn goes back to the event loop, so answers of the service, queued calls and
    // deferred deletions happen between the clock's steps as they would on a phone.
    QTimer::singleShot(0, this, [this, ms, then = std::move(then)]() mutable {
        if (ms <= 0)
            return then();
        // Long waits (a deadline minutes away) pass in larger turns, about a hundredth at a time.
        const int tick = std::min(ms, std::max(TickMs, ms / MaxTurns));
        m_clock->advance(tick);
        settle(ms - tick, std::move(then));
    });
}

void DemoTour::finish(bool ok)
{
    if (m_done)
        std::exchange(m_done, {})(ok);
}

QWidget *DemoTour::topView() const
{
    platform::ViewController *top = m_navigation ? m_navigation->topViewController() : nullptr;
    return top ? top->view() : nullptr;
}

ZIQGroupNoteViewController *DemoTour::editor() const
{
    return m_navigation ? qobject_cast<ZIQGroupNoteViewController *>(m_navigation->topViewController()) : nullptr;
}

bool DemoTour::click(const QString &name)
{
    // The picker sheet stands over the whole window, outside the screen's own view.
    QWidget *root = m_navigation ? m_navigation->view()->window() : nullptr;
    const QList<QWidget *> found = visibleNamed<QWidget>(root, name);
    if (found.isEmpty()) {
        qWarning().noquote() << "tour: nothing named" << name << "on screen";
        return false;
    }
    QTest::mouseClick(found.constLast(), Qt::LeftButton);
    return true;
}

bool DemoTour::enterChat()
{
    ZIQConversationList *conversations = m_list ? m_list->conversationList() : nullptr;
    const QString groupID = DemoWorld::noteScript(m_userID).groupID;
    for (int row = 0; conversations && row < conversations->count(); ++row) {
        if (conversations->at(row).conversation.groupID == groupID && m_list->openRow(row)) {
            m_navigation->finishTransition();
            return true;
        }
    }
    return missing("group chat of the note");
}

bool DemoTour::openChat()
{
    return enterChat() && click(QStringLiteral("moreButton"));
}

bool DemoTour::reopenChat()
{
    // A card on screen follows others' entries only as far as its shown line count changes (a
    // note already showing two lines keeps its face); entering the chat again reads the newest.
    if (!click(QStringLiteral("navigationBackButton")))
        return false;
    m_navigation->finishTransition();
    return enterChat();
}

bool DemoTour::composeNote()
{
    auto *chat = qobject_cast<ZIQBaseChatViewController *>(m_navigation->topViewController());
    ZIQChatMorePanel *panel = chat ? chat->inputController()->morePanel() : nullptr;
    if (!panel || !panel->itemView(0))
        return missing("more panel item");
    QTest::mouseClick(panel->itemView(0), Qt::LeftButton);
    m_navigation->finishTransition();
    ZIQGroupNoteViewController *screen = editor();
    if (!screen)
        return missing("note editor");
    const DemoNoteScene::Script script = DemoWorld::noteScript(m_userID);
    const QList<platform::TextField *> fields = screen->contentView()->infoTextFields();
    const QStringList texts = { script.title, script.description, QStringLiteral("Your name, what you bring") };
    for (int i = 0; i < fields.size() && i < texts.size(); ++i)
        QTest::keyClicks(fields.at(i), texts.at(i));
    // A new entry starts with the member's name.
    return typeIntoLastEntry(QStringLiteral("first aid kit")) && typeIntoLastEntry(QStringLiteral("sunscreen"));
}

bool DemoTour::typeIntoLastEntry(const QString &text)
{
    ZIQGroupNoteViewController *screen = editor();
    if (!screen)
        return missing("note editor");
    QTest::mouseClick(screen->contentView()->findChild<QPushButton *>(QStringLiteral("addButton")), Qt::LeftButton);
    // The new row is scrolled into view a moment later; the clock moves on at once.
    m_clock->advance(ZIQGroupNoteContentView::ScrollDelayMs + TickMs);
    QCoreApplication::processEvents();
    const QList<platform::TableViewCell *> cells = screen->contentView()->itemTableView()->visibleCells();
    auto *last = cells.isEmpty() ? nullptr : qobject_cast<ZIQGroupNoteTextFieldCell *>(cells.constLast());
    if (!last)
        return missing("new entry row");
    QTest::keyClicks(last->textField(), text);
    return true;
}

bool DemoTour::openCard()
{
    QWidget *view = topView();
    const QList<QPushButton *> buttons = visibleNamed<QPushButton>(view, QStringLiteral("joinButton"));
    if (buttons.isEmpty())
        return missing("join button of a note card");
    QTest::mouseClick(buttons.constLast(), Qt::LeftButton);
    m_navigation->finishTransition();
    return editor() != nullptr || missing("note editor");
}

bool DemoTour::typeOwnEntries(const QStringList &texts)
{
    ZIQGroupNoteViewController *screen = editor();
    if (!screen)
        return missing("note editor");
    QList<platform::TextField *> own;
    for (platform::TableViewCell *cell : screen->contentView()->itemTableView()->visibleCells()) {
        auto *row = qobject_cast<ZIQGroupNoteTextFieldCell *>(cell);
        if (row && !row->textField()->isReadOnly() && row->textField()->isEnabled())
            own.append(row->textField());
    }
    if (own.size() < texts.size())
        return missing("own entry to edit");
    for (int i = 0; i < texts.size(); ++i) {
        if (texts.at(i).isNull())
            continue;
        platform::TextField *field = own.at(i);
        field->setFocus();
        field->selectAll();
        if (texts.at(i).isEmpty())
            QTest::keyClick(field, Qt::Key_Backspace);
        else
            QTest::keyClicks(field, texts.at(i));
    }
    return true;
}

bool DemoTour::playJoiners(const QStringList &joiners)
{
    if (m_noteID.isEmpty() || !m_cast)
        return missing("note of the user");
    const DemoNoteScene::Script note = DemoWorld::noteScript(m_userID);
    DemoNoteScene::Script script;
    script.groupID = note.groupID;
    script.author = m_userID;
    script.joiners = joiners;
    // The played members' entries follow the author's in the group's own script.
    const QStringList everyone = QStringList { note.author } + note.joiners;
    script.entries.append(QString());
    for (const QString &joiner : joiners)
        script.entries.append(note.entries.value(everyone.indexOf(joiner)));
    auto *scene = new DemoNoteScene(m_cast, script, this);
    connect(scene, &DemoNoteScene::finished, scene, &QObject::deleteLater);
    scene->joinNote(m_noteID);
    return true;
}

bool DemoTour::openDeadlineRow()
{
    ZIQGroupNoteViewController *screen = editor();
    if (!screen || !click(QStringLiteral("settingButton")))
        return missing("settings tab of the note editor");
    platform::TableViewCell *row = screen->settingView()->tableView()->cellForRow({ 0, 1 });
    if (!row)
        return missing("deadline row");
    QTest::mouseClick(row, Qt::LeftButton);
    return true;
}

bool DemoTour::turnMinuteWheel()
{
    const QList<QWidget *> wheels
        = visibleNamed<QWidget>(m_navigation->view()->window(), QStringLiteral("minuteWheel"));
    if (wheels.isEmpty())
        return missing("minute wheel of the deadline picker");
    for (int i = 0; i < DeadlineStepsAhead; ++i)
        QTest::keyClick(wheels.constFirst(), Qt::Key_Down);
    return true;
}
