// Conversations as each member sees them: unread counts and read marks of one's own, one-to-one
// history, and group profiles and read marks for members only.
#include "ClientCalls.h"
#include "support/GroupFixture.h"

#include "sdk/V2VORConversationListener.h"
#include "sdk/V2VORErrorCode.h"

#include <QTest>

namespace {

struct ConversationRecorder : V2VORConversationListener
{
    explicit ConversationRecorder(V2VORManager *client) { client->addConversationListener(this); }
    void onConversationChanged(const QList<V2VORConversation> &conversations) override { changed += conversations; }
    QList<V2VORConversation> changed;
};

CallOutcome<> sendDirect(V2VORManager *client, const QString &receiver, const QString &text)
{
    CallOutcome<> sent;
    client->sendMessage(client->createTextMessage(text), receiver, {}, V2VOR_PRIORITY_DEFAULT, false, std::nullopt, {},
        sent.done(), sent.fail());
    sent.wait();
    return sent;
}

QList<V2VORConversation> conversationsOf(V2VORManager *client)
{
    CallOutcome<QList<V2VORConversation>> listed;
    client->getConversationList(listed.succ(), listed.fail());
    return listed.wait() ? listed.value() : QList<V2VORConversation>();
}

/// "id name unread last-text" per conversation, in list order.
QStringList summary(const QList<V2VORConversation> &conversations)
{
    QStringList lines;
    for (const V2VORConversation &c : conversations)
        lines << QStringLiteral("%1 %2 %3 %4")
                     .arg(c.conversationID, c.showName)
                     .arg(c.unreadCount)
                     .arg(c.lastMessage ? c.lastMessage->text() : QStringLiteral("-"));
    return lines;
}

} // namespace

class TestSdkConversations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unreadCountsAndReadMarksAreEachMembersOwn()
    {
        GroupFixture group;
        group.server()->createGroup("quiet", { "alice", "bob" });
        V2VORManager *alice = group.client("alice");
        ConversationRecorder atAlice(alice), atBob(group.client("bob"));
        QVERIFY(sendText(group.client("bob"), group.groupID(), "soup?"));
        QVERIFY(sendText(group.client("carol"), group.groupID(), "yes"));
        QCOMPARE(sendDirect(group.client("carol"), "alice", "psst").code(), 0);
        QCOMPARE(summary(conversationsOf(alice)),
            QStringList({ "c2c_carol Carol 1 psst", "group_group-1 group-1 2 yes", "group_quiet quiet 0 -" }));
        // The sender's own messages are never unread to them.
        QCOMPARE(summary(conversationsOf(group.client("bob"))).first(), QStringLiteral("group_group-1 group-1 1 yes"));
        const V2VORConversation direct = conversationsOf(alice).first();
        QVERIFY(direct.type == V2VOR_C2C && direct.userID == "carol" && direct.groupID.isEmpty());
        QTRY_COMPARE(atBob.changed.size(), 2);

        // A read mark reaches the reader alone and does not move the conversation.
        CallOutcome<> read, directRead;
        alice->markGroupMessageAsRead(group.groupID(), read.done(), read.fail());
        QVERIFY(read.wait() && read.code() == 0);
        QTRY_COMPARE(atAlice.changed.last().unreadCount, 0);
        QCOMPARE(atBob.changed.size(), 2);
        QCOMPARE(summary(conversationsOf(alice)).at(1), QStringLiteral("group_group-1 group-1 0 yes"));
        alice->markC2CMessageAsRead("carol", directRead.done(), directRead.fail());
        QVERIFY(directRead.wait() && directRead.code() == 0);
        QCOMPARE(conversationsOf(alice).first().unreadCount, 0);
    }

    void directHistoryAndGroupProfilesAreMembersOnly()
    {
        GroupFixture group;
        group.server()->createGroup("others", { "bob", "carol" });
        group.server()->setGroupInfo("others", "Others");
        V2VORManager *alice = group.client("alice");
        for (const QString &text : { QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c") })
            QCOMPARE(
                sendDirect(text == "b" ? group.client("bob") : alice, text == "b" ? "alice" : "bob", text).code(), 0);

        CallOutcome<QList<V2VORMessagePtr>> latest, older, nothing, unknown;
        alice->getC2CHistoryMessageList("bob", 2, nullptr, latest.succ(), latest.fail());
        QVERIFY(latest.wait() && latest.value().size() == 2);
        QCOMPARE(latest.value().first()->text(), QStringLiteral("c"));
        QCOMPARE(latest.value().last()->userID(), QStringLiteral("bob"));
        QVERIFY(!latest.value().last()->isSelf() && latest.value().last()->groupID().isEmpty());
        alice->getC2CHistoryMessageList("bob", 2, latest.value().last(), older.succ(), older.fail());
        QVERIFY(older.wait() && older.value().size() == 1);
        QCOMPARE(older.value().first()->text(), QStringLiteral("a"));
        alice->getC2CHistoryMessageList("carol", 5, nullptr, nothing.succ(), nothing.fail());
        QVERIFY(nothing.wait() && nothing.code() == 0 && nothing.value().isEmpty());
        alice->getC2CHistoryMessageList("nobody", 5, nullptr, unknown.succ(), unknown.fail());
        QVERIFY(unknown.wait());
        QCOMPARE(unknown.code(), int(V2VOR_ERR_INVALID_PARAMETERS));

        CallOutcome<QList<V2VORGroupInfo>> groups;
        alice->getGroupsInfo({ "others", group.groupID(), "missing" }, groups.succ(), groups.fail());
        QVERIFY(groups.wait() && groups.value().size() == 1);
        QCOMPARE(groups.value().first().groupID, group.groupID());
        CallOutcome<> outsider;
        alice->markGroupMessageAsRead("others", outsider.done(), outsider.fail());
        QVERIFY(outsider.wait());
        QCOMPARE(outsider.code(), int(V2VOR_ERR_NOT_GROUP_MEMBER));
    }
};

QTEST_MAIN(TestSdkConversations)
#include "tst_sdkconversations.moc"
