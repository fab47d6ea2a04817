// The conversation list screen: rows in order of activity with their times and unread badges,
// following new messages live, and opening a chat through the screen's factory.
#include "ChatTestSupport.h"
#include "sdk/ClientCalls.h"
#include "support/GroupFixture.h"

#include "kit/chat/ZIQConversationCell.h"
#include "kit/chat/ZIQConversationList.h"
#include "kit/chat/ZIQConversationListViewController.h"
#include "platform/NavigationController.h"
#include "platform/Screen.h"
#include "platform/TableView.h"

#include <QLabel>
#include <QTimeZone>

namespace {

// The tests run in Asia/Shanghai (UTC+8), where the list's day starts.
double shanghai(int year, int month, int day, int hour, int minute)
{
    return double(QDateTime(QDate(year, month, day), QTime(hour, minute), QTimeZone("Asia/Shanghai"))
                      .toMSecsSinceEpoch());
}

QString labelText(const QWidget *cell, const char *name)
{
    const auto *label = cell ? cell->findChild<QLabel *>(QString::fromLatin1(name)) : nullptr;
    return label ? label->text() : QStringLiteral("<no label>");
}

} // namespace

class ConversationListScreenTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(registerSheetKind()); }

    void timeText_data()
    {
        QTest::addColumn<double>("time");
        QTest::addColumn<double>("now");
        QTest::addColumn<QString>("expected");
        const double now = shanghai(2024, 3, 9, 15, 30);
        QTest::newRow("just after midnight") << shanghai(2024, 3, 9, 0, 1) << now << "00:01";
        QTest::newRow("just before midnight") << shanghai(2024, 3, 8, 23, 59) << now << "03/08";
        QTest::newRow("same day last year") << shanghai(2023, 3, 9, 15, 0) << now << "03/09";
        // Midnight in Shanghai is 16:00 UTC: a UTC day would call this "today".
        QTest::newRow("local day, not UTC") << shanghai(2024, 3, 10, 7, 0) << shanghai(2024, 3, 9, 23, 0) << "03/10";
        QTest::newRow("nothing said") << 0.0 << now << "";
    }
    void timeText()
    {
        QFETCH(double, time);
        QFETCH(double, now);
        QFETCH(QString, expected);
        QCOMPARE(ZIQConversationCell::timeText(time, now), expected);
    }

    void badgeAndLastMessage_data()
    {
        QTest::addColumn<int>("unread");
        QTest::addColumn<bool>("visible");
        QTest::addColumn<QString>("text");
        QTest::newRow("read") << 0 << false << "";
        QTest::newRow("ninety-nine") << 99 << true << "99";
        QTest::newRow("a hundred") << 100 << true << "99+";
    }
    void badgeAndLastMessage()
    {
        QFETCH(int, unread);
        QFETCH(bool, visible);
        QFETCH(QString, text);
        platform::ScreenScope screen({ 375, 812 });
        ZIQConversationCell cell;
        cell.resize(375, int(ZIQConversationCell::RowHeight));
        cell.show();
        ZIQConversationCellData data;
        data.title = QStringLiteral("Lunch club");
        data.unreadCount = 7;
        cell.fill(data); // a reused cell must not keep the last row's badge
        // A chat without messages yet shows its name level with its face.
        const auto *name = cell.findChild<QLabel *>(QStringLiteral("conversationName"));
        const auto *face = cell.findChild<QWidget *>(QStringLiteral("conversationAvatar"));
        QVERIFY(name && face);
        QVERIFY(qAbs(name->geometry().center().y() - face->geometry().center().y()) <= 1);
        data.unreadCount = unread;
        data.subTitle = QStringLiteral("Who brings the map?\nAnd the sandwiches, and the tea, and the blanket, and the dog");
        cell.fill(data);
        const auto *badge = cell.findChild<QLabel *>(QStringLiteral("conversationUnreadBadge"));
        QVERIFY(badge);
        QCOMPARE(!badge->isHidden(), visible);
        if (visible)
            QCOMPARE(badge->text(), text);
        // A long last message stays on one elided line, badge or not.
        const QString shown = labelText(&cell, "conversationLastMessage");
        QVERIFY(!shown.contains(QLatin1Char('\n')));
        QVERIFY(shown.endsWith(QChar(0x2026)));
    }

    void listFollowsActivityAndOpensChats()
    {
        platform::ScreenScope screen({ 375, 812 });
        GroupFixture group;
        QVERIFY(group.isReady());
        group.server()->setGroupInfo(group.groupID(), "Lunch club");
        group.server()->createGroup("quiet", { "alice", "bob" });
        group.server()->setGroupInfo("quiet", "Quiet corner");
        QVERIFY(sendText(group.client("carol"), group.groupID(), "me too"));
        group.actAs("alice");

        auto *list = new ZIQConversationListViewController;
        QList<ZIQChatConversation> asked;
        QPointer<platform::ViewController> made;
        list->setChatFactory([&](const ZIQChatConversation &conversation) {
            asked.append(conversation);
            made = new platform::ViewController;
            return made.data();
        });
        platform::NavigationController navigation(list);
        navigation.view()->resize(375, 812);
        navigation.view()->show();
        platform::TableView *table = list->tableView();
        auto rowName = [&](int row) { return labelText(table->cellForRow({ 0, row }), "conversationName"); };
        auto rowBadge = [&](int row) { return labelText(table->cellForRow({ 0, row }), "conversationUnreadBadge"); };

        // The group with the latest message leads; the group created before it follows.
        QTRY_COMPARE(table->numberOfRows(0), 2);
        QCOMPARE(rowName(0), QStringLiteral("Lunch club"));
        QCOMPARE(labelText(table->cellForRow({ 0, 0 }), "conversationLastMessage"), QStringLiteral("me too"));
        QCOMPARE(rowBadge(0), QStringLiteral("1"));
        QCOMPARE(rowName(1), QStringLiteral("Quiet corner"));

        // Another client speaks in the quiet group: it moves to the top while the screen is open.
        QVERIFY(sendText(group.client("bob"), "quiet", "anyone around?"));
        QTRY_COMPARE(rowName(0), QStringLiteral("Quiet corner"));
        QCOMPARE(labelText(table->cellForRow({ 0, 0 }), "conversationLastMessage"), QStringLiteral("anyone around?"));

        // A one-to-one chat appears under its partner's name, a plug-in's message by its display text.
        CallOutcome<> sent;
        group.client("bob")->sendMessage(group.client("bob")->createCustomMessage(sheetBody(1)), "alice", {}, 0, false,
            std::nullopt, {}, sent.done(), sent.fail());
        QTRY_COMPARE(table->numberOfRows(0), 3);
        QCOMPARE(rowName(0), QStringLiteral("Bob"));
        QCOMPARE(labelText(table->cellForRow({ 0, 0 }), "conversationLastMessage"), QStringLiteral("[Sheet]"));
        const ZIQConversationList *conversations = list->conversationList();
        QCOMPARE(conversations->totalUnreadCount(), 3);

        // A tap on a row pushes the factory's screen for that chat and marks it read.
        QTest::mouseClick(table->cellForRow({ 0, 2 }), Qt::LeftButton, {}, QPoint(200, 30));
        QCOMPARE(asked, QList<ZIQChatConversation>({ { group.groupID(), {} } }));
        QVERIFY(made);
        QCOMPARE(navigation.topViewController(), made.data());
        QTRY_COMPARE(conversations->at(conversations->rowOf("group_group-1")).unreadCount, 0);
        QCOMPARE(conversations->totalUnreadCount(), 2);
    }
};

QTEST_MAIN(ConversationListScreenTest)
#include "tst_conversationlistscreen.moc"
