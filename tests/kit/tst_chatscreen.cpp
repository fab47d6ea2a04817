// The conversation screen on groups of real clients: rows built by registered class and
// measured before they are filled, one cell data per message however cells are reused, one
// row re-measured on a plug-in's size change without moving what is on screen, the "more"
// panel's question, typed messages and reactions arriving live, failed sends shown as failed,
// and the input bar following the keyboard.
#include "ChatTestSupport.h"
#include "sdk/ClientCalls.h"
#include "support/GroupFixture.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQChatInputController.h"
#include "kit/chat/ZIQChatMorePanel.h"
#include "kit/chat/ZIQMessageStatusView.h"
#include "kit/chat/ZIQReactionMenu.h"
#include "kit/chat/ZIQReactionStrip.h"
#include "kit/chat/ZIQTextMessageCell.h"
#include "platform/Keyboard.h"
#include "platform/NavigationController.h"
#include "platform/NotificationCenter.h"
#include "platform/Screen.h"
#include "platform/TableView.h"
#include "platform/TextField.h"

#include <QContextMenuEvent>
#include <QPushButton>
#include <QLabel>
#include <QToolButton>

/// A poll row: as tall as its body's "lines" say; logs every measure and fill by message ID.
class PollCell : public ZIQBubbleMessageCell
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit PollCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr)
        : ZIQBubbleMessageCell(reuseIdentifier, parent)
    {
    }
    static QSizeF getContentSize(ZIQMessageCellData *data)
    {
        log << QStringLiteral("measure:") + data->msgID();
        const QJsonObject body = ZIQTool::jsonData2Dictionary(data->innerMessage()->customElem()->data);
        return QSizeF(200, 30 * body.value("lines").toInt(1));
    }
    void fillWithData(const ZIQMessageCellDataPtr &data) override
    {
        log << QStringLiteral("fill:") + data->msgID();
        ZIQBubbleMessageCell::fillWithData(data);
    }
    static inline QStringList log;
};

namespace {

/// A chat screen on a navigation stack in a phone-sized window, its first page loaded.
struct OpenChat
{
    OpenChat(const ZIQChatConversation &conversation, V2VORManager *client)
        : chat(new ZIQBaseChatViewController(conversation, client))
        , navigation(chat)
    {
        navigation.view()->resize(375, 812);
        navigation.view()->show();
    }
    bool waitLoaded(int rows)
    {
        return QTest::qWaitFor([&] { return chat->messageList()->count() >= rows; }, 5000);
    }
    platform::TableView *table() const { return chat->tableView(); }
    template<class Cell> Cell *cell(int row) const
    {
        return qobject_cast<Cell *>(table()->cellForRow({ 0, row }));
    }

    ZIQBaseChatViewController *chat;
    platform::NavigationController navigation;
};

int lastRow(const OpenChat &open)
{
    return open.chat->messageList()->count() - 1;
}

/// Tells the chat that the poll in `row` now shows `lines` lines, as its plug-in would.
void resizePoll(const OpenChat &open, int row, int lines)
{
    const V2VORMessagePtr message = open.chat->messageList()->cellData(row)->innerMessage();
    message->customElem()->data = sheetBody(lines, "poll");
    ZIQCore::notifyEvent(ZIQCore_ZIQPluginNotify, ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey, nullptr,
        { { ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey_Message, QVariant::fromValue(message) } });
}

void postKeyboard(const QString &name, qreal height)
{
    const qreal screenHeight = platform::Screen::height();
    const QRectF up(0, screenHeight - height, platform::Screen::width(), height);
    const QRectF down = up.translated(0, height);
    const bool showing = name == platform::KeyboardWillShowNotification;
    platform::NotificationCenter::defaultCenter().post(name,
        { { platform::KeyboardFrameBeginUserInfoKey, showing ? down : up },
            { platform::KeyboardFrameEndUserInfoKey, showing ? up : down },
            { platform::KeyboardAnimationDurationUserInfoKey, 0.25 } });
}

} // namespace

class ChatScreenTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(registerSheetKind());
        ZIQChatClassRegistry::instance().registerCellClass<PollCell>();
        QVERIFY(appendKind("poll", "PollCell", "SheetCellData"));
        ZIQBaseChatViewController::registerKitCells();
    }

    void theMorePanelAsksWithTheChatsParameters_data()
    {
        QTest::addColumn<bool>("inGroup");
        QTest::newRow("group") << true;
        QTest::newRow("one-to-one") << false;
    }

    void theMorePanelAsksWithTheChatsParameters()
    {
        QFETCH(bool, inGroup);
        platform::ScreenScope screen({ 375, 812 });
        GroupFixture group;
        MoreProvider provider;
        ZIQCore::registerExtension(ZIQCore_ZIQChatExtension_InputViewMoreItem_ClassicExtensionID, &provider);
        const ZIQChatConversation conversation = inGroup ? ZIQChatConversation { group.groupID(), {} }
                                                         : ZIQChatConversation { {}, QStringLiteral("alice") };
        OpenChat open(conversation, group.client("bob"));
        ZIQChatInputController *input = open.chat->inputController();
        QTest::mouseClick(input->moreButton(), Qt::LeftButton);
        ZIQCore::unRegisterExtension(&provider);
        QVERIFY(input->isMorePanelVisible());
        QCOMPARE(provider.asked.value(ZIQCore_ZIQChatExtension_InputViewMoreItem_GroupID).toString(),
            inGroup ? group.groupID() : QString());
        QCOMPARE(provider.asked.value(ZIQCore_ZIQChatExtension_InputViewMoreItem_VC).value<QObject *>(),
            static_cast<QObject *>(open.chat));
        QCOMPARE(provider.asked.value(ZIQCore_ZIQChatExtension_InputViewMoreItem_PushVC).value<QObject *>(),
            static_cast<QObject *>(&open.navigation));
        auto *empty = input->morePanel()->findChild<QLabel *>("moreEmptyLabel");
        QCOMPARE(empty->isVisible(), !inGroup);
    }

    void aRefusedSendShowsFailedAndCanGoAgain()
    {
        platform::ScreenScope screen({ 375, 812 });
        GroupFixture group;
        OpenChat open({ group.groupID(), {} }, group.client("alice"));
        QVERIFY(open.waitLoaded(0));
        group.server()->failNextCall("sendMessage", 9520, "service busy");
        open.chat->inputController()->textField()->setText("hello");
        QTest::mouseClick(open.chat->inputController()->sendButton(), Qt::LeftButton);
        QTRY_VERIFY(open.cell<ZIQTextMessageCell>(0));
        ZIQMessageStatusView *status = open.cell<ZIQTextMessageCell>(0)->statusView();
        QTRY_COMPARE(int(status->status()), int(ZIQMessageStatus::Failed));
        QVERIFY(status->isVisible());
        QTest::mouseClick(status, Qt::LeftButton);
        QTRY_COMPARE(open.chat->messageList()->count(), 2);
        QTRY_COMPARE(int(open.chat->messageList()->cellData(1)->status()), int(ZIQMessageStatus::Sent));
        QTRY_VERIFY(open.cell<ZIQTextMessageCell>(1) && open.cell<ZIQTextMessageCell>(1)->statusView()->isHidden());
    }

    void typedTextAndReactionsAppearLiveForEveryMember()
    {
        platform::ScreenScope screen({ 375, 812 });
        GroupFixture group;
        group.actAs("carol");
        OpenChat atCarol({ group.groupID(), {} }, group.client("carol"));
        OpenChat atAlice({ group.groupID(), {} }, group.client("alice"));
        OpenChat atBob({ group.groupID(), {} }, group.client("bob"));
        QVERIFY(atCarol.waitLoaded(0));
        platform::TextField *field = atCarol.chat->inputController()->textField();
        field->setText("who is in?");
        QTest::keyClick(field, Qt::Key_Return);
        QVERIFY(field->text().isEmpty());
        QVERIFY(atAlice.waitLoaded(1) && atBob.waitLoaded(1));
        QTRY_VERIFY(atAlice.cell<ZIQTextMessageCell>(0) && atBob.cell<ZIQTextMessageCell>(0));
        QCOMPARE(atBob.cell<ZIQTextMessageCell>(0)->textLabel()->text(), QStringLiteral("who is in?"));
        QCOMPARE(atBob.cell<ZIQTextMessageCell>(0)->nameLabel()->text(), QStringLiteral("Carol"));
        // At the sender's the bubble goes without a name.
        QVERIFY(!atCarol.cell<ZIQTextMessageCell>(0)->nameLabel()->isVisible());
        const qreal rowBefore = atBob.table()->rectForRow({ 0, 0 }).height();

        // A right click offers the emoji bar; choosing one reacts.
        ZIQTextMessageCell *message = atAlice.cell<ZIQTextMessageCell>(0);
        QContextMenuEvent menu(QContextMenuEvent::Mouse, QPoint(70, 30), message->mapToGlobal(QPoint(70, 30)));
        QApplication::sendEvent(message, &menu);
        ZIQReactionMenu *bar = atAlice.chat->reactionMenu();
        QVERIFY(bar->isVisible());
        QTest::mouseClick(bar->findChild<QToolButton *>("reaction_0"), Qt::LeftButton);
        QVERIFY(!bar->isVisible());

        QTRY_VERIFY(atBob.cell<ZIQTextMessageCell>(0)->reactionStrip()->isVisible());
        ZIQReactionStrip *strip = atBob.cell<ZIQTextMessageCell>(0)->reactionStrip();
        QCOMPARE(strip->reactions().size(), 1);
        QCOMPARE(ZIQReactionStrip::chipText(strip->reactions().first()), QStringLiteral("👍 1"));
        QVERIFY(atBob.table()->rectForRow({ 0, 0 }).height() > rowBefore);

        // Bob's tap on the chip adds his own, which Alice sees live.
        QTest::mouseClick(strip, Qt::LeftButton, {}, strip->chipRect(0).center().toPoint());
        QTRY_COMPARE(atAlice.cell<ZIQTextMessageCell>(0)->reactionStrip()->reactions().value(0).userIDs,
            QStringList({ "alice", "bob" }));
    }

    void theInputBarAndListFollowTheKeyboard_data()
    {
        QTest::addColumn<QSize>("phone");
        QTest::addColumn<int>("safeBottom");
        QTest::newRow("with home area") << QSize(375, 812) << 34;
        QTest::newRow("with home button") << QSize(375, 667) << 0;
    }

    void theInputBarAndListFollowTheKeyboard()
    {
        QFETCH(QSize, phone);
        QFETCH(int, safeBottom);
        platform::ScreenScope screen(phone);
        QCOMPARE(platform::Screen::safeAreaInsets().bottom(), safeBottom);
        GroupFixture group;
        for (int i = 0; i < 20; ++i)
            QVERIFY(sendText(group.client("carol"), group.groupID(), QStringLiteral("line %1").arg(i)));
        OpenChat open({ group.groupID(), {} }, group.client("bob"));
        open.navigation.view()->resize(phone);
        QVERIFY(open.waitLoaded(20));
        QWidget *bar = open.chat->inputController();
        const int barTop = bar->y();
        const int listHeight = open.table()->height();
        const auto lastRowShown = [&] {
            const QRectF last = open.table()->rectForRow({ 0, lastRow(open) });
            return qFuzzyCompare(last.bottom(), open.table()->contentOffset().y() + open.table()->viewport()->height());
        };
        QTRY_VERIFY(lastRowShown());

        const qreal keyboard = platform::Keyboard::height();
        QVERIFY(keyboard > safeBottom);
        postKeyboard(platform::KeyboardWillShowNotification, keyboard);
        const int rise = int(keyboard) - safeBottom;
        QCOMPARE(bar->y(), barTop - rise);
        QCOMPARE(open.table()->height(), listHeight - rise);
        QVERIFY(lastRowShown());

        postKeyboard(platform::KeyboardWillHideNotification, keyboard);
        QCOMPARE(bar->y(), barTop);
        QCOMPARE(open.table()->height(), listHeight);
        QVERIFY(lastRowShown());
    }

    void aRowChangingHeightIsReMeasuredAloneAndTheScreenStaysStill_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("lines");
        QTest::addColumn<bool>("atBottom");
        QTest::newRow("on screen at the bottom") << 18 << 3 << true;
        QTest::newRow("above the screen, grows") << 3 << 5 << false;
        QTest::newRow("above the screen, shrinks") << 3 << 1 << false;
    }

    void aRowChangingHeightIsReMeasuredAloneAndTheScreenStaysStill()
    {
        QFETCH(int, row);
        QFETCH(int, lines);
        QFETCH(bool, atBottom);
        platform::ScreenScope screen({ 375, 812 });
        GroupFixture group;
        QList<V2VORMessagePtr> sent;
        for (int i = 0; i < 20; ++i)
            sent << sendToGroup(group.client("alice"), group.groupID(), sheetBody(2, "poll"));
        PollCell::log.clear();
        OpenChat open({ group.groupID(), {} }, group.client("bob"));
        QVERIFY(open.waitLoaded(20));
        QTRY_VERIFY(open.cell<PollCell>(18));
        // Rows are measured before they are filled, and are as tall as measured.
        const qsizetype measured = PollCell::log.indexOf("measure:" + sent[18]->msgID());
        QVERIFY2(measured >= 0 && PollCell::log.indexOf("fill:" + sent[18]->msgID()) > measured,
            qPrintable(PollCell::log.join(' ')));
        QCOMPARE(open.table()->rectForRow({ 0, 18 }).height(),
            60 + ZIQBubbleMessageCell::NameHeight + 2 * ZIQBubbleMessageCell::RowPadding);
        // Either at the bottom, where new messages arrive, or reading well away from it.
        if (!atBottom)
            open.table()->setContentOffset({ 0, open.table()->rectForRow({ 0, 12 }).top() + 10 });
        const int anchor = atBottom ? lastRow(open) : open.table()->indexPathsForVisibleRows().first().row;
        QVERIFY(anchor > row);
        const auto screenBottomOf = [&](int row) {
            return open.table()->rectForRow({ 0, row }).bottom() - open.table()->contentOffset().y();
        };
        const qreal before = screenBottomOf(anchor);
        const qreal rowBefore = open.table()->rectForRow({ 0, row }).height();
        PollCell::log.clear();

        resizePoll(open, row, lines);
        QCOMPARE(PollCell::log.filter("measure:"), QStringList { "measure:" + sent[row]->msgID() });
        QCOMPARE(open.table()->rectForRow({ 0, row }).height(), rowBefore + 30 * (lines - 2));
        if (atBottom)
            QCOMPARE(open.cell<PollCell>(row)->container()->height(), 30 * lines);
        QCOMPARE(screenBottomOf(anchor), before);
        platform::TableViewCell *shown = open.table()->cellForRow({ 0, anchor });
        QCOMPARE(shown->mapTo(open.table()->viewport(), QPoint(0, shown->height())).y(), qRound(before));

        // However cells are reused while scrolling, each shows its own message's cell data.
        for (const qreal offset : { 0.0, open.table()->contentSize().height() }) {
            open.table()->setContentOffset({ 0, offset });
            for (const platform::IndexPath &path : open.table()->indexPathsForVisibleRows()) {
                auto *cell = qobject_cast<ZIQMessageCell *>(open.table()->cellForRow(path));
                QVERIFY(cell && cell->messageData() == open.chat->messageList()->cellData(path.row));
            }
        }
    }
};

QTEST_MAIN(ChatScreenTest)
#include "tst_chatscreen.moc"
