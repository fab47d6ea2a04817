// The rules every messaging service keeps, checked through the client library exactly as the
// plug-in uses it, whichever service the executable runs against: message IDs and per-group
// sequences, statuses, custom messages, extensions with per-key versions where the first writer
// wins, the limits, stale modifications, access for members only, and events to every member.
#include "ContractFixture.h"
#include "sdk/CallOutcome.h"
#include "sdk/ClientCalls.h"
#include "sdk/EventRecorder.h"

#include "sdk/V2VORErrorCode.h"

#include <QTest>

namespace {

using Extensions = QList<V2VORMessageExtension>;
using Results = QList<V2VORMessageExtensionResult>;

const QByteArray kNote = R"({"businessID":"group_note","title":"Lunch"})";

QList<int> codes(const CallOutcome<Results> &outcome)
{
    QList<int> found;
    for (const V2VORMessageExtensionResult &result : outcome.value())
        found << result.resultCode;
    return found;
}

Extensions numbered(int from, int count)
{
    Extensions extensions;
    for (int i = from; i < from + count; ++i)
        extensions.append({ QStringLiteral("key%1").arg(i), QStringLiteral("v") });
    return extensions;
}

CallOutcome<Extensions> getExtensions(V2VORManager *client, const V2VORMessagePtr &message)
{
    CallOutcome<Extensions> outcome;
    client->getMessageExtensions(message, outcome.succ(), outcome.fail());
    outcome.wait();
    return outcome;
}

CallOutcome<Results> deleteExtensions(V2VORManager *client, const V2VORMessagePtr &message, const QStringList &keys)
{
    CallOutcome<Results> outcome;
    client->deleteMessageExtensions(message, keys, outcome.succ(), outcome.fail());
    outcome.wait();
    return outcome;
}

CallOutcome<QList<V2VORMessagePtr>> history(V2VORManager *client, const QString &groupID, int count,
    const V2VORMessagePtr &before = nullptr)
{
    CallOutcome<QList<V2VORMessagePtr>> outcome;
    client->getGroupHistoryMessageList(groupID, count, before, outcome.succ(), outcome.fail());
    outcome.wait();
    return outcome;
}

QList<quint64> seqs(const QList<V2VORMessagePtr> &messages)
{
    QList<quint64> found;
    for (const V2VORMessagePtr &message : messages)
        found << message->seq();
    return found;
}

/// The message as `client` received it, once it has.
V2VORMessagePtr copyAt(V2VORManager *client, const QString &msgID)
{
    V2VORMessagePtr copy;
    return QTest::qWaitFor([&] { return bool(copy = localCopy(client, msgID)); }, 5000) ? copy : nullptr;
}

} // namespace

class TestServiceContract : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_service = makeServiceUnderTest();
        QVERIFY2(m_service->startError().isEmpty(), qPrintable(m_service->startError()));
    }
    void cleanupTestCase() { m_service.reset(); }

    void messagesGetIDsSequencesAndReachMembers()
    {
        ContractFixture group(*m_service);
        QVERIFY(group.isReady());
        EventRecorder atAlice(group.client("alice")), atBob(group.client("bob"));
        V2VORMessagePtr note = group.client("alice")->createCustomMessage(kNote);
        note->setSupportMessageExtension(true);
        const CallOutcome<> sending = send(group.client("alice"), note, group.groupID());
        QCOMPARE(note->status(), int(V2VOR_MSG_STATUS_SENDING));
        // Who sends it is known at once: a row drawn now names its sender.
        QCOMPARE(note->nickName(), QStringLiteral("Alice"));
        QVERIFY(!note->msgID().isEmpty() && sending.wait());
        QCOMPARE(sending.code(), 0);
        QCOMPARE(note->status(), int(V2VOR_MSG_STATUS_SEND_SUCC));
        QCOMPARE(note->seq(), quint64(1));
        QVERIFY(note->isSelf() && note->sender() == group.id("alice"));

        QTRY_COMPARE(atBob.newMessages.size(), 1);
        const V2VORMessagePtr received = atBob.newMessages.first();
        QCOMPARE(received->msgID(), note->msgID());
        QCOMPARE(received->customElem()->data, kNote);
        QVERIFY(!received->isSelf() && received->supportMessageExtension());
        QCOMPARE(received->nickName(), QStringLiteral("Alice"));
        QCOMPARE(received->groupID(), group.groupID());

        const V2VORMessagePtr text = sendText(group.client("bob"), group.groupID(), QStringLiteral("on my way"));
        QVERIFY(text && text->msgID() != note->msgID());
        QCOMPARE(text->seq(), quint64(2));
        QTRY_COMPARE(atAlice.newMessages.size(), 1);
        QCOMPARE(atAlice.newMessages.first()->text(), QStringLiteral("on my way"));
        // The sender hears nothing of its own message; every group counts from 1.
        QVERIFY(atBob.newMessages.size() == 1);
        const QString other = group.addGroup(QStringLiteral("other"), { QStringLiteral("alice") });
        QCOMPARE(sendText(group.client("alice"), other, QStringLiteral("hi"))->seq(), quint64(1));
    }

    void historyAndAccessAreForMembersOnly()
    {
        ContractFixture group(*m_service);
        V2VORManager *outsider = group.addOutsider(QStringLiteral("mallory"));
        QVERIFY(group.isReady());
        const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
        for (const char *text : { "one", "two" })
            QVERIFY(sendText(group.client("alice"), group.groupID(), QString::fromLatin1(text)));

        const auto newest = history(group.client("bob"), group.groupID(), 2);
        QCOMPARE(seqs(newest.value()), (QList<quint64> { 3, 2 }));
        QCOMPARE(seqs(history(group.client("bob"), group.groupID(), 5, newest.value().last()).value()),
            QList<quint64> { 1 });

        QCOMPARE(history(outsider, group.groupID(), 5).code(), int(V2VOR_ERR_NOT_GROUP_MEMBER));
        const V2VORMessagePtr intruding = outsider->createTextMessage(QStringLiteral("let me in"));
        const CallOutcome<> sent = send(outsider, intruding, group.groupID());
        QVERIFY(sent.wait());
        QCOMPARE(sent.code(), int(V2VOR_ERR_NOT_GROUP_MEMBER));
        QCOMPARE(intruding->status(), int(V2VOR_MSG_STATUS_SEND_FAIL));
        // Knowing a message's ID is not membership.
        QCOMPARE(setExtensions(outsider, note, { { "k", "v" } }).code(), int(V2VOR_ERR_NOT_GROUP_MEMBER));
        QCOMPARE(getExtensions(outsider, note).code(), int(V2VOR_ERR_NOT_GROUP_MEMBER));
        QCOMPARE(seqs(history(group.client("bob"), group.groupID(), 10).value()), (QList<quint64> { 3, 2, 1 }));
        QVERIFY(getExtensions(group.client("bob"), note).value().isEmpty());
    }

    void limitsHold()
    {
        ContractFixture group(*m_service, { QStringLiteral("alice") });
        QVERIFY(group.isReady());
        V2VORManager *alice = group.client("alice");
        const V2VORMessagePtr note = sendToGroup(alice, group.groupID(), kNote);
        QVERIFY(note);
        QCOMPARE(setExtensions(alice, note, numbered(0, 21)).code(), int(V2VOR_ERR_EXTENSION_TOO_MANY_IN_CALL));
        const auto perKey = setExtensions(alice, note,
            { { QString(), "v" }, { QString(101, 'k'), "v" }, { QString(50, QChar(0xE9)), "v" },
                { "long", QString(1025, 'v') }, { "full", QString(1024, 'v') } });
        QCOMPARE(codes(perKey),
            (QList<int> { V2VOR_ERR_EXTENSION_KEY_INVALID, V2VOR_ERR_EXTENSION_KEY_INVALID, 0,
                V2VOR_ERR_EXTENSION_VALUE_TOO_LONG, 0 }));

        for (int from = 2; from < 300; from += 20)
            QCOMPARE(setExtensions(alice, note, numbered(from, qMin(20, 300 - from))).code(), 0);
        QCOMPARE(getExtensions(alice, note).value().size(), 300);
        QCOMPARE(codes(setExtensions(alice, note, { { "one-too-many", "v" }, { "key7", "changed" } })),
            (QList<int> { V2VOR_ERR_EXTENSION_KEY_LIMIT_REACHED, 0 }));

        const V2VORMessagePtr tooLarge = alice->createCustomMessage(QByteArray(V2VORLimits::kMaxMessageBodyBytes + 1, 'x'));
        const CallOutcome<> large = send(alice, tooLarge, group.groupID());
        QVERIFY(large.wait());
        QCOMPARE(large.code(), int(V2VOR_ERR_MESSAGE_BODY_TOO_LARGE));
        QVERIFY(sendToGroup(alice, group.groupID(), QByteArray(V2VORLimits::kMaxMessageBodyBytes, 'x')));
        const V2VORMessagePtr plain = sendToGroup(alice, group.groupID(), kNote, false);
        QCOMPARE(setExtensions(alice, plain, { { "k", "v" } }).code(), int(V2VOR_ERR_EXTENSION_NOT_SUPPORTED));
    }

    void firstWriterWinsAndDeletionsNeverConflict()
    {
        ContractFixture group(*m_service);
        QVERIFY(group.isReady());
        EventRecorder atCarol(group.client("carol"));
        const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
        QCOMPARE(codes(setExtensions(group.client("alice"), note, { { "slot", "alice" } })), QList<int> { 0 });

        // A device that never saw the key cannot overwrite it; the refusal carries the latest value
        // and teaches the version, so the next attempt is a deliberate overwrite.
        const std::unique_ptr<V2VORManager> bob = group.newDevice(QStringLiteral("bob"));
        const V2VORMessagePtr bobsCopy = copyAt(group.client("bob"), note->msgID());
        QVERIFY(bobsCopy);
        const auto refused = setExtensions(bob.get(), bobsCopy, { { "slot", "bob" }, { "fresh", "bob" } });
        QCOMPARE(codes(refused), (QList<int> { V2VOR_ERR_EXTENSION_VERSION_CONFLICT, 0 }));
        QCOMPARE(refused.value().first().extension.extensionValue, QStringLiteral("alice"));
        QCOMPARE(codes(setExtensions(bob.get(), bobsCopy, { { "slot", "bob" } })), QList<int> { 0 });

        // Deleting needs no view of the key; a key written again after deletion is live again.
        const std::unique_ptr<V2VORManager> carol = group.newDevice(QStringLiteral("carol"));
        QCOMPARE(codes(deleteExtensions(carol.get(), bobsCopy, { "slot", "never-written" })), (QList<int> { 0, 0 }));
        QTRY_COMPARE(atCarol.deleted.size(), 1);
        QCOMPARE(atCarol.deleted.first(), qMakePair(note->msgID(), QStringList { "slot" }));
        QCOMPARE(getExtensions(group.client("alice"), note).value(), (Extensions { { "fresh", "bob" } }));
        QCOMPARE(codes(setExtensions(carol.get(), bobsCopy, { { "slot", "carol" } })), QList<int> { 0 });
        QTRY_COMPARE(atCarol.changed.size(), 4);
        QCOMPARE(atCarol.changed.last(), qMakePair(note->msgID(), Extensions { { "slot", "carol" } }));
    }

    void staleModificationAnswersTheCurrentMessage()
    {
        ContractFixture group(*m_service);
        QVERIFY(group.isReady());
        EventRecorder atCarol(group.client("carol"));
        const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
        const V2VORMessagePtr carolsCopy = copyAt(group.client("carol"), note->msgID())->clone();

        note->customElem()->data = R"({"show_line_num":2})";
        std::optional<int> first;
        group.client("alice")->modifyMessage(note, [&](int code, const QString &, const V2VORMessagePtr &) { first = code; });
        QTRY_COMPARE(first.value_or(-1), 0);
        QCOMPARE(note->messageVersion(), quint64(1));
        QTRY_COMPARE(atCarol.modified.size(), 1);
        QCOMPARE(atCarol.modified.first()->customElem()->data, note->customElem()->data);

        carolsCopy->customElem()->data = R"({"show_line_num":1})";
        std::optional<QPair<int, QByteArray>> stale;
        group.client("carol")->modifyMessage(carolsCopy, [&](int code, const QString &, const V2VORMessagePtr &now) {
            stale = qMakePair(code, now ? now->customElem()->data : QByteArray("no message"));
        });
        QTRY_VERIFY(stale.has_value());
        QCOMPARE(*stale, qMakePair(int(V2VOR_ERR_MESSAGE_MODIFY_CONFLICT), note->customElem()->data));
    }

    void extensionsBySequence()
    {
        ContractFixture group(*m_service, { QStringLiteral("alice"), QStringLiteral("bob") });
        QVERIFY(group.isReady());
        const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
        QVariantMap param { { "groupID", group.groupID() }, { "messageSequence", note->seq() },
            { "messageExtensionList", QVariant::fromValue(Extensions { { "conf_0", "{}" } }) } };
        CallOutcome<QVariant> written, read, missing;
        group.client("bob")->callExperimentalAPI(
            QStringLiteral("setMessageExtensionsBySequence"), param, written.succ(), written.fail());
        QVERIFY(written.wait());
        QCOMPARE(written.value().value<Results>().value(0).resultCode, 0);
        group.client("alice")->callExperimentalAPI(
            QStringLiteral("getMessageExtensionsBySequence"), param, read.succ(), read.fail());
        QVERIFY(read.wait());
        QCOMPARE(read.value().value<Extensions>(), (Extensions { { "conf_0", "{}" } }));
        param.insert("messageSequence", 99);
        group.client("alice")->callExperimentalAPI(
            QStringLiteral("getMessageExtensionsBySequence"), param, missing.succ(), missing.fail());
        QVERIFY(missing.wait());
        QCOMPARE(missing.code(), int(V2VOR_ERR_MESSAGE_NOT_FOUND));
    }

    void conversationsMembersAndReadMarks()
    {
        ContractFixture group(*m_service);
        QVERIFY(group.isReady());
        for (const char *text : { "one", "two" })
            QVERIFY(sendText(group.client("alice"), group.groupID(), QString::fromLatin1(text)));
        auto unreadAtBob = [&] {
            CallOutcome<QList<V2VORConversation>> list;
            group.client("bob")->getConversationList(list.succ(), list.fail());
            list.wait();
            for (const V2VORConversation &conversation : list.value()) {
                if (conversation.groupID == group.groupID() && conversation.lastMessage)
                    return QStringLiteral("%1 %2").arg(conversation.unreadCount).arg(conversation.lastMessage->text());
            }
            return QStringLiteral("missing");
        };
        QCOMPARE(unreadAtBob(), QStringLiteral("2 two"));
        CallOutcome<> marked;
        group.client("bob")->markGroupMessageAsRead(group.groupID(), marked.done(), marked.fail());
        QVERIFY(marked.wait() && marked.code() == 0);
        QCOMPARE(unreadAtBob(), QStringLiteral("0 two"));

        CallOutcome<QList<V2VORGroupMemberFullInfo>> members;
        group.client("carol")->getGroupMembersInfo(group.groupID(), {}, members.succ(), members.fail());
        QVERIFY(members.wait());
        QStringList names;
        for (const V2VORGroupMemberFullInfo &member : members.value())
            names << member.nickName;
        names.sort();
        QCOMPARE(names, (QStringList { "Alice", "Bob", "Carol" }));
    }

    void everyDeviceOfEveryMemberHearsChanges()
    {
        ContractFixture group(*m_service);
        QVERIFY(group.isReady());
        const std::unique_ptr<V2VORManager> bobsTablet = group.newDevice(QStringLiteral("bob"));
        EventRecorder atBob(group.client("bob")), atBobsTablet(bobsTablet.get()), atCarol(group.client("carol"));
        const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
        QTRY_COMPARE(atBobsTablet.newMessages.size(), 1);
        QCOMPARE(codes(setExtensions(group.client("alice"), note, { { "alice_1_0", "soup" } })), QList<int> { 0 });
        for (EventRecorder *recorder : { &atBob, &atBobsTablet, &atCarol }) {
            QTRY_COMPARE(recorder->changed.size(), 1);
            QCOMPARE(recorder->changed.first().second, (Extensions { { "alice_1_0", "soup" } }));
        }
        // A write from the tablet is known to bob's phone as well: it may overwrite at once.
        const V2VORMessagePtr onTablet = atBobsTablet.newMessages.first();
        QCOMPARE(codes(setExtensions(bobsTablet.get(), onTablet, { { "bob_2_0", "bread" } })), QList<int> { 0 });
        QTRY_COMPARE(atBob.changed.size(), 2);
        QCOMPARE(codes(setExtensions(group.client("bob"), copyAt(group.client("bob"), note->msgID()),
                     { { "bob_2_0", "rolls" } })),
            QList<int> { 0 });
    }

private:
    std::unique_ptr<ServiceUnderTest> m_service;
};

QTEST_GUILESS_MAIN(TestServiceContract)
#include "tst_servicecontract.moc"
