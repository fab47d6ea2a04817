// Messages between the clients of one group: sending and receiving, the body limit, local
// history, modification with versions, directory look-ups, injected failures and listeners.
#include "CallOutcome.h"
#include "EventRecorder.h"
#include "SendHelper.h"
#include "support/GroupFixture.h"

#include "platform/ManualClock.h"
#include "sdk/V2VORErrorCode.h"

#include <QTest>

namespace {

const QByteArray kNote = R"({"businessID":"group_note","title":"Lunch"})";

} // namespace

class TestSdkMessaging : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sentMessageReachesTheOtherMembers();
    void sendRecordKeepsWhatTheSenderHandedOver();
    void emptyDataMakesNoMessage();
    void bodyLimit_data();
    void bodyLimit();
    void callsBeforeLoginAreRefused();
    void injectedFailureIsReportedOnce();
    void findMessagesAnswersFromLocalHistoryOnly();
    void staleModificationGetsTheCurrentMessage();
    void membersAreSeenWithTheAskersRemarks();
    void loginOfUnknownUserRegistersIt();
    void writeLogGoesToTheClientsLog();
    void destroyedListenerIsNeverCalled();
    void fixtureSwitchesTheSharedClient();
};

void TestSdkMessaging::sentMessageReachesTheOtherMembers()
{
    platform::ManualClock clock(1700000000000.0);
    GroupFixture group;
    QVERIFY(group.isReady());
    EventRecorder atAlice, atBob, atCarol;
    group.client("alice")->addAdvancedMsgListener(&atAlice);
    group.client("bob")->addAdvancedMsgListener(&atBob);
    group.client("carol")->addAdvancedMsgListener(&atCarol);

    V2VORMessagePtr message = group.client("alice")->createCustomMessage(kNote);
    QVERIFY(message);
    QCOMPARE(message->elemType(), int(V2VOR_ELEM_TYPE_CUSTOM));
    message->setSupportMessageExtension(true);
    CallOutcome<> sent;
    const QString msgID = group.client("alice")->sendMessage(
        message, {}, group.groupID(), V2VOR_PRIORITY_DEFAULT, false, std::nullopt, {}, sent.done(), sent.fail());

    // Nothing is answered inside the call; the message is on its way.
    QVERIFY(!msgID.isEmpty());
    QCOMPARE(message->msgID(), msgID);
    QVERIFY(!sent.arrived());
    QCOMPARE(message->status(), int(V2VOR_MSG_STATUS_SENDING));

    QTRY_VERIFY(sent.arrived());
    QCOMPARE(sent.code(), 0);
    QCOMPARE(message->status(), int(V2VOR_MSG_STATUS_SEND_SUCC));
    QCOMPARE(message->seq(), quint64(1));
    QCOMPARE(message->sender(), QStringLiteral("alice"));
    QCOMPARE(message->groupID(), group.groupID());
    QCOMPARE(message->timestamp(), 1700000000000.0);
    QVERIFY(message->isSelf());

    QTRY_COMPARE(atBob.newMessages.size(), 1);
    QTRY_COMPARE(atCarol.newMessages.size(), 1);
    const V2VORMessagePtr received = atBob.newMessages.first();
    QCOMPARE(received->msgID(), msgID);
    QCOMPARE(received->customElem()->data, kNote);
    QCOMPARE(received->nickName(), QStringLiteral("Alice"));
    QVERIFY(!received->isSelf());
    QVERIFY(received->supportMessageExtension());
    QVERIFY(atAlice.newMessages.isEmpty());

    // Every client holds its own copy.
    received->customElem()->data = "changed at bob";
    QCOMPARE(atCarol.newMessages.first()->customElem()->data, kNote);
    QCOMPARE(group.server()->messageByID(msgID)->customElem()->data, kNote);

    const V2VORMessagePtr second = sendToGroup(group.client("bob"), group.groupID(), kNote);
    QVERIFY(second);
    QCOMPARE(second->seq(), quint64(2));
    QCOMPARE(group.server()->groupMessages(group.groupID()).size(), 2);
}

void TestSdkMessaging::sendRecordKeepsWhatTheSenderHandedOver()
{
    GroupFixture group;
    V2VOROfflinePushInfo push;
    push.ext = QStringLiteral("{\"entity\":1}");
    push.AndroidOPPOChannelID = QStringLiteral("ziqkit");
    CallOutcome<> sent;
    const QString msgID = group.client("alice")->sendMessage(group.client("alice")->createCustomMessage(kNote), {},
        group.groupID(), V2VOR_PRIORITY_HIGH, true, push, {}, sent.done(), sent.fail());
    QTRY_VERIFY(sent.arrived());

    const auto record = group.server()->sendRecord(msgID);
    QVERIFY(record);
    QCOMPARE(record->priority, int(V2VOR_PRIORITY_HIGH));
    QVERIFY(record->onlineUserOnly);
    QVERIFY(record->offlinePushInfo);
    QCOMPARE(record->offlinePushInfo->AndroidOPPOChannelID, QStringLiteral("ziqkit"));
    QVERIFY(!group.server()->sendRecord(QStringLiteral("unknown")));
}

void TestSdkMessaging::emptyDataMakesNoMessage()
{
    GroupFixture group;
    QVERIFY(!group.client("alice")->createCustomMessage({}));
}

void TestSdkMessaging::bodyLimit_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("code");
    QTest::newRow("at the limit") << V2VORLimits::kMaxMessageBodyBytes << int(V2VOR_SUCC);
    QTest::newRow("one byte over") << V2VORLimits::kMaxMessageBodyBytes + 1 << int(V2VOR_ERR_MESSAGE_BODY_TOO_LARGE);
}

void TestSdkMessaging::bodyLimit()
{
    QFETCH(int, bytes);
    QFETCH(int, code);
    GroupFixture group;
    V2VORMessagePtr message = group.client("alice")->createCustomMessage(QByteArray(bytes, 'x'));
    CallOutcome<> sent;
    group.client("alice")->sendMessage(
        message, {}, group.groupID(), 0, false, std::nullopt, {}, sent.done(), sent.fail());
    QTRY_VERIFY(sent.arrived());
    QCOMPARE(sent.code(), code);
    QCOMPARE(message->status(), int(code ? V2VOR_MSG_STATUS_SEND_FAIL : V2VOR_MSG_STATUS_SEND_SUCC));
    QCOMPARE(group.server()->groupMessages(group.groupID()).size(), code ? 0 : 1);
}

void TestSdkMessaging::callsBeforeLoginAreRefused()
{
    GroupFixture group;
    V2VORManager stranger(group.server());
    QCOMPARE(stranger.getLoginStatus(), int(V2VOR_STATUS_LOGOUT));

    CallOutcome<> sent;
    CallOutcome<QList<V2VORMessagePtr>> found;
    CallOutcome<QVariant> logged;
    stranger.sendMessage(
        stranger.createCustomMessage(kNote), {}, group.groupID(), 0, false, std::nullopt, {}, sent.done(), sent.fail());
    stranger.findMessages({ QStringLiteral("msg-1") }, found.succ(), found.fail());
    stranger.callExperimentalAPI(QStringLiteral("writeLog"), QStringLiteral("line"), logged.succ(), logged.fail());
    QTRY_VERIFY(sent.arrived() && found.arrived() && logged.arrived());
    QCOMPARE(sent.code(), int(V2VOR_ERR_NOT_LOGGED_IN));
    QCOMPARE(found.code(), int(V2VOR_ERR_NOT_LOGGED_IN));
    QCOMPARE(logged.code(), int(V2VOR_ERR_NOT_LOGGED_IN));
    QVERIFY(!sent.desc().isEmpty());
    QVERIFY(stranger.writtenLogs().isEmpty());
    QVERIFY(group.server()->groupMessages(group.groupID()).isEmpty());
}

void TestSdkMessaging::injectedFailureIsReportedOnce()
{
    GroupFixture group;
    group.server()->failNextCall(QStringLiteral("sendMessage"), 9520, QStringLiteral("service busy"));
    V2VORMessagePtr message = group.client("alice")->createCustomMessage(kNote);
    CallOutcome<> first;
    group.client("alice")->sendMessage(
        message, {}, group.groupID(), 0, false, std::nullopt, {}, first.done(), first.fail());
    QVERIFY(!first.arrived());
    QTRY_VERIFY(first.arrived());
    QCOMPARE(first.code(), 9520);
    QCOMPARE(first.desc(), QStringLiteral("service busy"));
    QCOMPARE(message->status(), int(V2VOR_MSG_STATUS_SEND_FAIL));
    QVERIFY(group.server()->groupMessages(group.groupID()).isEmpty());

    QVERIFY(sendToGroup(group.client("alice"), group.groupID(), kNote));
    QCOMPARE(group.server()->callCount(QStringLiteral("sendMessage")), 2);
}

void TestSdkMessaging::findMessagesAnswersFromLocalHistoryOnly()
{
    GroupFixture group;
    const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
    QVERIFY(note);
    V2VORManager *dave = group.addLateMember(QStringLiteral("dave"));

    CallOutcome<QList<V2VORMessagePtr>> atBob, atBobAgain, atDave;
    group.client("bob")->findMessages({ note->msgID() }, atBob.succ(), atBob.fail());
    group.client("bob")->findMessages(
        { note->msgID(), QStringLiteral("missing") }, atBobAgain.succ(), atBobAgain.fail());
    dave->findMessages({ note->msgID() }, atDave.succ(), atDave.fail());
    QTRY_VERIFY(atBob.arrived() && atBobAgain.arrived() && atDave.arrived());
    QCOMPARE(atBob.value().size(), 1);
    QCOMPARE(atBobAgain.value().size(), 1);
    QVERIFY(atBobAgain.value().first() != atBob.value().first());
    QCOMPARE(atDave.code(), 0);
    QVERIFY(atDave.value().isEmpty());

    // Fetching the group's history puts the note on dave's device.
    CallOutcome<QList<V2VORMessagePtr>> fetched, afterFetch;
    dave->getGroupHistoryMessageList(group.groupID(), 20, nullptr, fetched.succ(), fetched.fail());
    QTRY_VERIFY(fetched.arrived());
    QCOMPARE(fetched.value().size(), 1);
    dave->findMessages({ note->msgID() }, afterFetch.succ(), afterFetch.fail());
    QTRY_VERIFY(afterFetch.arrived());
    QCOMPARE(afterFetch.value().size(), 1);
    QCOMPARE(afterFetch.value().first()->seq(), note->seq());
}

void TestSdkMessaging::staleModificationGetsTheCurrentMessage()
{
    GroupFixture group;
    EventRecorder atAlice, atCarol;
    group.client("alice")->addAdvancedMsgListener(&atAlice);
    group.client("carol")->addAdvancedMsgListener(&atCarol);
    const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
    QVERIFY(note);
    QTRY_COMPARE(atCarol.newMessages.size(), 1);
    const V2VORMessagePtr carolsCopy = atCarol.newMessages.first();

    note->customElem()->data = R"({"show_line_num":2})";
    using Answer = std::tuple<int, QString, V2VORMessagePtr>;
    std::optional<Answer> first, second;
    group.client("alice")->modifyMessage(note, [&](int code, const QString &desc, const V2VORMessagePtr &current) {
        first = Answer { code, desc, current };
    });
    QVERIFY(!first);
    QTRY_VERIFY(first);
    QCOMPARE(std::get<0>(*first), 0);
    QCOMPARE(note->messageVersion(), quint64(1));
    QTRY_COMPARE(atCarol.modified.size(), 1);
    QCOMPARE(atAlice.modified.size(), 1);
    QCOMPARE(atCarol.modified.first()->customElem()->data, note->customElem()->data);

    carolsCopy->customElem()->data = R"({"show_line_num":1})";
    group.client("carol")->modifyMessage(carolsCopy, [&](int code, const QString &desc, const V2VORMessagePtr &now) {
        second = Answer { code, desc, now };
    });
    QTRY_VERIFY(second);
    QCOMPARE(std::get<0>(*second), int(V2VOR_ERR_MESSAGE_MODIFY_CONFLICT));
    QVERIFY(!std::get<1>(*second).isEmpty());
    QVERIFY(std::get<2>(*second));
    QCOMPARE(std::get<2>(*second)->customElem()->data, note->customElem()->data);
    QCOMPARE(std::get<2>(*second)->messageVersion(), quint64(1));
    QCOMPARE(group.server()->messageByID(note->msgID())->customElem()->data, note->customElem()->data);

    // Carol's device was updated by the event, so a look-up shows the current body.
    CallOutcome<QList<V2VORMessagePtr>> local;
    group.client("carol")->findMessages({ note->msgID() }, local.succ(), local.fail());
    QTRY_VERIFY(local.arrived());
    QCOMPARE(local.value().first()->customElem()->data, note->customElem()->data);
}

void TestSdkMessaging::membersAreSeenWithTheAskersRemarks()
{
    GroupFixture group;
    group.server()->setNameCard(group.groupID(), QStringLiteral("bob"), QStringLiteral("Bobby (ops)"));
    group.server()->setFriendRemark(QStringLiteral("alice"), QStringLiteral("bob"), QStringLiteral("Bob from work"));

    CallOutcome<QList<V2VORGroupMemberFullInfo>> asAlice, asCarol, outsider;
    group.client("alice")->getGroupMembersInfo(
        group.groupID(), { QStringLiteral("bob"), QStringLiteral("zed") }, asAlice.succ(), asAlice.fail());
    group.client("carol")->getGroupMembersInfo(group.groupID(), {}, asCarol.succ(), asCarol.fail());
    group.addOutsider(QStringLiteral("erin"))
        ->getGroupMembersInfo(group.groupID(), {}, outsider.succ(), outsider.fail());
    QTRY_VERIFY(asAlice.arrived() && asCarol.arrived() && outsider.arrived());

    QCOMPARE(asAlice.value().size(), 1);
    const V2VORGroupMemberFullInfo bob = asAlice.value().first();
    QCOMPARE(bob.userID, QStringLiteral("bob"));
    QCOMPARE(bob.nickName, QStringLiteral("Bob"));
    QCOMPARE(bob.nameCard, QStringLiteral("Bobby (ops)"));
    QCOMPARE(bob.friendRemark, QStringLiteral("Bob from work"));
    QCOMPARE(bob.faceURL, GroupFixture::faceURLOf(QStringLiteral("bob")));
    QCOMPARE(asCarol.value().size(), 3);
    QCOMPARE(asCarol.value().at(1).friendRemark, QString());
    QCOMPARE(outsider.code(), int(V2VOR_ERR_NOT_GROUP_MEMBER));

    CallOutcome<QList<V2VORUserFullInfo>> users;
    group.client("alice")->getUsersInfo(
        { QStringLiteral("carol"), QStringLiteral("nobody") }, users.succ(), users.fail());
    QTRY_VERIFY(users.arrived());
    QCOMPARE(users.value().size(), 1);
    QCOMPARE(users.value().first().nickName, QStringLiteral("Carol"));
}

void TestSdkMessaging::loginOfUnknownUserRegistersIt()
{
    MessagingServer server;
    V2VORManager client(&server);
    CallOutcome<> login;
    client.login(QStringLiteral("newcomer"), login.done(), login.fail());
    QVERIFY(!login.arrived());
    QTRY_VERIFY(login.arrived());
    QCOMPARE(login.code(), 0);
    QCOMPARE(client.getLoginStatus(), int(V2VOR_STATUS_LOGINED));
    QCOMPARE(client.getLoginUser(), QStringLiteral("newcomer"));
    QVERIFY(server.hasUser(QStringLiteral("newcomer")));

    CallOutcome<> logout;
    client.logout(logout.done(), logout.fail());
    QTRY_VERIFY(logout.arrived());
    QCOMPARE(client.getLoginStatus(), int(V2VOR_STATUS_LOGOUT));
}

void TestSdkMessaging::writeLogGoesToTheClientsLog()
{
    GroupFixture group;
    CallOutcome<QVariant> written, unknown, illTyped;
    group.client("bob")->callExperimentalAPI(
        QStringLiteral("writeLog"), QStringLiteral("{\"logLevel\": 4}"), written.succ(), written.fail());
    group.client("bob")->callExperimentalAPI(QStringLiteral("noSuchAPI"), {}, unknown.succ(), unknown.fail());
    group.client("bob")->callExperimentalAPI(
        QStringLiteral("writeLog"), QVariantMap(), illTyped.succ(), illTyped.fail());
    QTRY_VERIFY(written.arrived() && unknown.arrived() && illTyped.arrived());
    QCOMPARE(written.code(), 0);
    QCOMPARE(group.client("bob")->writtenLogs(), QStringList { QStringLiteral("{\"logLevel\": 4}") });
    QVERIFY(group.client("alice")->writtenLogs().isEmpty());
    QCOMPARE(unknown.code(), int(V2VOR_ERR_INVALID_PARAMETERS));
    QCOMPARE(illTyped.code(), int(V2VOR_ERR_INVALID_PARAMETERS));
    QCOMPARE(group.server()->callCount(QStringLiteral("writeLog")), 2);
    QCOMPARE(group.server()->callCount(QStringLiteral("callExperimentalAPI")), 3);
}

void TestSdkMessaging::destroyedListenerIsNeverCalled()
{
    struct CountingListener : V2VORAdvancedMsgListener
    {
        explicit CountingListener(int *calls)
            : calls(calls)
        {
        }
        void onRecvNewMessage(const V2VORMessagePtr &) override { ++*calls; }
        int *calls;
    };

    GroupFixture group;
    int callsOfDestroyed = 0;
    auto doomed = std::make_unique<CountingListener>(&callsOfDestroyed);
    EventRecorder survivor;
    group.client("bob")->addAdvancedMsgListener(doomed.get());
    group.client("carol")->addAdvancedMsgListener(doomed.get());
    group.client("bob")->addAdvancedMsgListener(&survivor);

    // Destroyed while the event is already on its way.
    CallOutcome<> sent;
    group.client("alice")->sendMessage(group.client("alice")->createCustomMessage(kNote), {}, group.groupID(), 0, false,
        std::nullopt, {}, sent.done(), sent.fail());
    doomed.reset();
    QTRY_COMPARE(survivor.newMessages.size(), 1);
    QCOMPARE(callsOfDestroyed, 0);
}

void TestSdkMessaging::fixtureSwitchesTheSharedClient()
{
    MessagingServer server;
    V2VORManager before(&server);
    V2VORManager::setSharedInstance(&before);
    {
        GroupFixture group;
        QVERIFY(group.isReady());
        group.actAs(QStringLiteral("bob"));
        QCOMPARE(V2VORManager::sharedInstance(), group.client("bob"));
        QCOMPARE(V2VORManager::sharedInstance()->getLoginUser(), QStringLiteral("bob"));
        group.actAs(QStringLiteral("carol"));
        QCOMPARE(V2VORManager::sharedInstance(), group.client("carol"));
        QVERIFY(!group.client("nobody"));
    }
    QCOMPARE(V2VORManager::sharedInstance(), &before);
    V2VORManager::setSharedInstance(nullptr);
}

QTEST_GUILESS_MAIN(TestSdkMessaging)
#include "tst_sdkmessaging.moc"
