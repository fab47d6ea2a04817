// Messages between the clients of one group: sending and receiving, refused sends, modification
// with versions, and listeners that go away.
#include "ClientCalls.h"
#include "EventRecorder.h"
#include "support/GroupFixture.h"

#include "sdk/V2VORErrorCode.h"

#include <QTest>

namespace {

const QByteArray kNote = R"({"businessID":"group_note","title":"Lunch"})";

} // namespace

class TestSdkMessaging : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sentMessageReachesTheOtherMembers()
    {
        GroupFixture group;
        EventRecorder atAlice(group.client("alice")), atBob(group.client("bob")), atCarol(group.client("carol"));
        QVERIFY(!group.client("alice")->createCustomMessage({}));
        V2VORMessagePtr message = group.client("alice")->createCustomMessage(kNote);
        message->setSupportMessageExtension(true);

        const CallOutcome<> sent = send(group.client("alice"), message, group.groupID());
        // Nothing is answered inside the call; the message is on its way.
        QVERIFY(!sent.arrived() && !message->msgID().isEmpty());
        QCOMPARE(message->status(), int(V2VOR_MSG_STATUS_SENDING));
        // Who sent it is known at once: a row drawn now names its sender.
        QCOMPARE(message->nickName(), GroupFixture::nickNameOf("alice"));
        QTRY_VERIFY(sent.arrived());
        QCOMPARE(sent.code(), 0);
        QCOMPARE(message->status(), int(V2VOR_MSG_STATUS_SEND_SUCC));
        QCOMPARE(message->seq(), quint64(1));
        QVERIFY(message->isSelf() && message->sender() == QStringLiteral("alice"));

        QTRY_COMPARE(atCarol.newMessages.size(), 1);
        QTRY_COMPARE(atBob.newMessages.size(), 1);
        const V2VORMessagePtr received = atBob.newMessages.first();
        QCOMPARE(received->msgID(), message->msgID());
        QVERIFY(!received->isSelf() && received->supportMessageExtension());
        QVERIFY(atAlice.newMessages.isEmpty());
        // Every client holds its own copy.
        received->customElem()->data = "changed at bob";
        QCOMPARE(atCarol.newMessages.first()->customElem()->data, kNote);
        QCOMPARE(sendToGroup(group.client("bob"), group.groupID(), kNote)->seq(), quint64(2));
    }

    void refusedSendsAreReportedLater()
    {
        GroupFixture group;
        V2VORManager *alice = group.client("alice");
        V2VORManager stranger(group.server());
        QVERIFY(sendToGroup(alice, group.groupID(), QByteArray(V2VORLimits::kMaxMessageBodyBytes, 'x')));
        const V2VORMessagePtr tooLarge
            = alice->createCustomMessage(QByteArray(V2VORLimits::kMaxMessageBodyBytes + 1, 'x'));
        const CallOutcome<> large = send(alice, tooLarge, group.groupID());
        const CallOutcome<> notLoggedIn = send(&stranger, stranger.createCustomMessage(kNote), group.groupID());
        QVERIFY(!large.arrived() && !notLoggedIn.arrived());
        QVERIFY(large.wait() && notLoggedIn.wait());
        QCOMPARE(large.code(), int(V2VOR_ERR_MESSAGE_BODY_TOO_LARGE));
        QCOMPARE(tooLarge->status(), int(V2VOR_MSG_STATUS_SEND_FAIL));
        QCOMPARE(notLoggedIn.code(), int(V2VOR_ERR_NOT_LOGGED_IN));
        QCOMPARE(group.server()->groupMessages(group.groupID()).size(), 1);
    }

    void staleModificationGetsTheCurrentMessage()
    {
        GroupFixture group;
        EventRecorder atAlice(group.client("alice")), atCarol(group.client("carol"));
        const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
        QTRY_COMPARE(atCarol.newMessages.size(), 1);

        note->customElem()->data = R"({"show_line_num":2})";
        std::optional<int> first;
        group.client("alice")->modifyMessage(
            note, [&](int code, const QString &, const V2VORMessagePtr &) { first = code; });
        QVERIFY(!first);
        QTRY_COMPARE(first.value_or(-1), 0);
        QCOMPARE(note->messageVersion(), quint64(1));
        QTRY_COMPARE(atCarol.modified.size(), 1);
        QCOMPARE(atAlice.modified.size(), 1);

        // Carol's copy was taken before alice's change.
        const V2VORMessagePtr carolsCopy = atCarol.newMessages.first();
        carolsCopy->customElem()->data = R"({"show_line_num":1})";
        QString answer;
        group.client("carol")->modifyMessage(
            carolsCopy, [&](int code, const QString &desc, const V2VORMessagePtr &now) {
                answer = QStringLiteral("%1 %2 ").arg(code).arg(desc.isEmpty() ? "undescribed" : "described")
                    + QString::fromUtf8(now ? now->customElem()->data : "no message");
            });
        QTRY_COMPARE(answer, QStringLiteral("8006 described ") + QString::fromUtf8(note->customElem()->data));
        // Carol's device was updated by the event.
        QCOMPARE(localCopy(group.client("carol"), note->msgID())->customElem()->data, note->customElem()->data);
    }

    void destroyedListenerIsNeverCalled()
    {
        GroupFixture group;
        auto doomed = std::make_unique<EventRecorder>();
        group.client("carol")->addAdvancedMsgListener(doomed.get());
        group.client("bob")->addAdvancedMsgListener(doomed.get());
        EventRecorder survivor(group.client("bob"));
        // Destroyed while the event is already on its way.
        send(group.client("alice"), group.client("alice")->createCustomMessage(kNote), group.groupID());
        doomed.reset();
        QTRY_COMPARE(survivor.newMessages.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestSdkMessaging)
#include "tst_sdkmessaging.moc"
