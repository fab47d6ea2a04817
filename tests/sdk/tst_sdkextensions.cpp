// Message extensions shared by the members of a group: writes seen by everyone, the limits of
// the service, version conflicts between members, deletion, and access by group sequence for
// a member who does not hold the message.
#include "CallOutcome.h"
#include "EventRecorder.h"
#include "SendHelper.h"
#include "support/GroupFixture.h"

#include "sdk/V2VORErrorCode.h"

#include <QTest>

namespace {

using Extensions = QList<V2VORMessageExtension>;
using Results = QList<V2VORMessageExtensionResult>;

const QByteArray kNote = R"({"businessID":"group_note","title":"Lunch"})";
const QString kConfig = QStringLiteral("config");
const QString kBobsEntry = QStringLiteral("bob_1700000000000_0");

CallOutcome<Results> setExtensions(V2VORManager *client, const V2VORMessagePtr &message, const Extensions &extensions)
{
    CallOutcome<Results> outcome;
    client->setMessageExtensions(message, extensions, outcome.succ(), outcome.fail());
    outcome.wait();
    return outcome;
}

CallOutcome<Extensions> getExtensions(V2VORManager *client, const V2VORMessagePtr &message)
{
    CallOutcome<Extensions> outcome;
    client->getMessageExtensions(message, outcome.succ(), outcome.fail());
    outcome.wait();
    return outcome;
}

CallOutcome<QVariant> callBySequence(V2VORManager *client, const QString &api, const QVariantMap &param)
{
    CallOutcome<QVariant> outcome;
    client->callExperimentalAPI(api, param, outcome.succ(), outcome.fail());
    outcome.wait();
    return outcome;
}

/// The client's own copy of a message it received.
V2VORMessagePtr localCopy(V2VORManager *client, const QString &msgID)
{
    CallOutcome<QList<V2VORMessagePtr>> found;
    client->findMessages({ msgID }, found.succ(), found.fail());
    found.wait();
    return found.value().isEmpty() ? nullptr : found.value().first();
}

Extensions numbered(int count, const QString &prefix = QStringLiteral("key"))
{
    Extensions extensions;
    for (int i = 0; i < count; ++i)
        extensions.append({ prefix + QString::number(i), QStringLiteral("value") });
    return extensions;
}

} // namespace

class TestSdkExtensions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesInTurnReachEveryMember();
    void deletionRemovesTheKey();
    void keyAndValueLimits_data();
    void keyAndValueLimits();
    void keyLimitPerMessage();
    void refusedMessages_data();
    void refusedMessages();
    void sameKeyFromTheSameStateConflicts();
    void differentKeysNeverConflict();
    void lateJoinerUsesTheGroupSequence();
    void sequenceCallsCheckTheirParameters();
    void injectedFailures();
};

void TestSdkExtensions::writesInTurnReachEveryMember()
{
    GroupFixture group;
    EventRecorder atAlice, atBob, atCarol;
    group.client("alice")->addAdvancedMsgListener(&atAlice);
    group.client("bob")->addAdvancedMsgListener(&atBob);
    group.client("carol")->addAdvancedMsgListener(&atCarol);
    const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
    QVERIFY(note);

    CallOutcome<Results> pending;
    group.client("alice")->setMessageExtensions(
        note, { { kConfig, QStringLiteral("{\"notify\":true}") } }, pending.succ(), pending.fail());
    QVERIFY(!pending.arrived());
    QTRY_VERIFY(pending.arrived());
    QCOMPARE(pending.value().size(), 1);
    QCOMPARE(pending.value().first().resultCode, 0);

    const V2VORMessagePtr bobsCopy = localCopy(group.client("bob"), note->msgID());
    QVERIFY(bobsCopy);
    const auto bobs
        = setExtensions(group.client("bob"), bobsCopy, { { kBobsEntry, QStringLiteral("two sandwiches") } });
    QCOMPARE(bobs.code(), 0);
    QCOMPARE(bobs.value().first().extension.extensionKey, kBobsEntry);

    QTRY_COMPARE(atCarol.changed.size(), 2);
    QCOMPARE(atCarol.changed.at(0).first, note->msgID());
    QCOMPARE(atCarol.changed.at(0).second, (Extensions { { kConfig, QStringLiteral("{\"notify\":true}") } }));
    QCOMPARE(atCarol.changed.at(1).second, (Extensions { { kBobsEntry, QStringLiteral("two sandwiches") } }));
    QTRY_COMPARE(atAlice.changed.size(), 2);
    QTRY_COMPARE(atBob.changed.size(), 2);

    // A later write of the first key keeps the order in which keys were first written.
    QCOMPARE(setExtensions(group.client("alice"), note, { { kConfig, QStringLiteral("{}") } }).code(), 0);
    const V2VORMessagePtr carolsCopy = localCopy(group.client("carol"), note->msgID());
    QVERIFY(carolsCopy);
    const auto seenByCarol = getExtensions(group.client("carol"), carolsCopy);
    QCOMPARE(seenByCarol.value(),
        (Extensions { { kConfig, QStringLiteral("{}") }, { kBobsEntry, QStringLiteral("two sandwiches") } }));
}

void TestSdkExtensions::deletionRemovesTheKey()
{
    GroupFixture group;
    EventRecorder atCarol;
    group.client("carol")->addAdvancedMsgListener(&atCarol);
    const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
    QVERIFY(note);
    QCOMPARE(setExtensions(group.client("alice"), note, { { "a", "1" }, { "b", "2" } }).code(), 0);

    CallOutcome<Results> deleted;
    group.client("alice")->deleteMessageExtensions(note, { "a", "never-written" }, deleted.succ(), deleted.fail());
    QTRY_VERIFY(deleted.arrived());
    QCOMPARE(deleted.value().size(), 2);
    QCOMPARE(deleted.value().at(0).resultCode, 0);
    QCOMPARE(deleted.value().at(1).resultCode, 0);
    QCOMPARE(group.server()->extensionsOf(note->msgID()), (Extensions { { "b", "2" } }));
    QTRY_COMPARE(atCarol.deleted.size(), 1);
    QCOMPARE(atCarol.deleted.first().second, QStringList { "a" });

    // Written again, the key counts as new and goes to the end.
    QCOMPARE(setExtensions(group.client("alice"), note, { { "a", "3" } }).value().first().resultCode, 0);
    QCOMPARE(group.server()->extensionsOf(note->msgID()), (Extensions { { "b", "2" }, { "a", "3" } }));
}

void TestSdkExtensions::keyAndValueLimits_data()
{
    QTest::addColumn<Extensions>("extensions");
    QTest::addColumn<int>("callCode");
    QTest::addColumn<int>("keyCode");

    const QString longKey(V2VORLimits::kMaxExtensionKeyBytes, 'k');
    const QString longValue(V2VORLimits::kMaxExtensionValueBytes, 'v');
    // 34 characters of three UTF-8 bytes each: short in characters, too long in bytes.
    const QString wideKey(34, QChar(0x540D));
    QTest::newRow("20 in a call") << numbered(20) << 0 << 0;
    QTest::newRow("21 in a call") << numbered(21) << int(V2VOR_ERR_EXTENSION_TOO_MANY_IN_CALL) << 0;
    QTest::newRow("empty key") << Extensions { { "", "x" } } << 0 << int(V2VOR_ERR_EXTENSION_KEY_INVALID);
    QTest::newRow("100-byte key") << Extensions { { longKey, "x" } } << 0 << 0;
    QTest::newRow("101-byte key") << Extensions { { longKey + 'k', "x" } } << 0 << int(V2VOR_ERR_EXTENSION_KEY_INVALID);
    QTest::newRow("102 bytes in 34 characters")
        << Extensions { { wideKey, "x" } } << 0 << int(V2VOR_ERR_EXTENSION_KEY_INVALID);
    QTest::newRow("1024-byte value") << Extensions { { "k", longValue } } << 0 << 0;
    QTest::newRow("1025-byte value") << Extensions { { "k", longValue + 'v' } } << 0
                                     << int(V2VOR_ERR_EXTENSION_VALUE_TOO_LONG);
}

void TestSdkExtensions::keyAndValueLimits()
{
    QFETCH(Extensions, extensions);
    QFETCH(int, callCode);
    QFETCH(int, keyCode);
    GroupFixture group;
    const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
    QVERIFY(note);

    const auto outcome = setExtensions(group.client("alice"), note, extensions);
    QVERIFY(outcome.arrived());
    QCOMPARE(outcome.code(), callCode);
    const Extensions stored = group.server()->extensionsOf(note->msgID());
    if (callCode != 0) {
        QVERIFY(!outcome.desc().isEmpty());
        QVERIFY(stored.isEmpty());
        return;
    }
    QCOMPARE(outcome.value().size(), extensions.size());
    QCOMPARE(outcome.value().first().resultCode, keyCode);
    QCOMPARE(outcome.value().first().extension.extensionKey, extensions.first().extensionKey);
    if (keyCode != 0)
        QVERIFY(!outcome.value().first().resultInfo.isEmpty());
    QCOMPARE(stored.size(), keyCode == 0 ? extensions.size() : 0);
}

void TestSdkExtensions::keyLimitPerMessage()
{
    GroupFixture group;
    const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
    QVERIFY(note);
    const int calls = V2VORLimits::kMaxExtensionKeysPerMessage / V2VORLimits::kMaxExtensionsPerCall;
    for (int call = 0; call < calls; ++call) {
        const auto outcome = setExtensions(group.client("alice"), note,
            numbered(V2VORLimits::kMaxExtensionsPerCall, QStringLiteral("c%1_").arg(call)));
        QCOMPARE(outcome.code(), 0);
    }
    QCOMPARE(group.server()->extensionsOf(note->msgID()).size(), V2VORLimits::kMaxExtensionKeysPerMessage);

    // A full message refuses new keys one by one, while existing keys may still change.
    const auto full = setExtensions(group.client("alice"), note, { { "one-too-many", "x" }, { "c0_0", "changed" } });
    QCOMPARE(full.code(), 0);
    QCOMPARE(full.value().at(0).resultCode, int(V2VOR_ERR_EXTENSION_KEY_LIMIT_REACHED));
    QCOMPARE(full.value().at(1).resultCode, 0);
    QCOMPARE(group.server()->extensionsOf(note->msgID()).first(), (V2VORMessageExtension { "c0_0", "changed" }));
}

void TestSdkExtensions::refusedMessages_data()
{
    QTest::addColumn<QString>("situation");
    QTest::addColumn<int>("code");
    QTest::newRow("writer outside the group") << "outsider" << int(V2VOR_ERR_NOT_GROUP_MEMBER);
    QTest::newRow("message without extension support") << "unsupported" << int(V2VOR_ERR_EXTENSION_NOT_SUPPORTED);
    QTest::newRow("message not sent") << "unsent" << int(V2VOR_ERR_EXTENSION_NOT_SUPPORTED);
}

void TestSdkExtensions::refusedMessages()
{
    QFETCH(QString, situation);
    QFETCH(int, code);
    GroupFixture group;
    V2VORManager *writer = situation == "outsider" ? group.addOutsider(QStringLiteral("erin")) : group.client("alice");
    V2VORMessagePtr message = situation == "unsent"
        ? group.client("alice")->createCustomMessage(kNote)
        : sendToGroup(group.client("alice"), group.groupID(), kNote, situation != "unsupported");
    QVERIFY(message);

    const auto written = setExtensions(writer, message, { { "k", "v" } });
    const auto read = getExtensions(writer, message);
    CallOutcome<Results> deleted;
    writer->deleteMessageExtensions(message, { "k" }, deleted.succ(), deleted.fail());
    QTRY_VERIFY(deleted.arrived());
    QCOMPARE(written.code(), code);
    QCOMPARE(read.code(), code);
    QCOMPARE(deleted.code(), code);
    QVERIFY(!written.desc().isEmpty());
    if (!message->msgID().isEmpty())
        QVERIFY(group.server()->extensionsOf(message->msgID()).isEmpty());
}

void TestSdkExtensions::sameKeyFromTheSameStateConflicts()
{
    GroupFixture group;
    EventRecorder atCarol;
    group.client("carol")->addAdvancedMsgListener(&atCarol);
    const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
    QVERIFY(note);
    QCOMPARE(setExtensions(group.client("alice"), note, { { kConfig, "first" } }).code(), 0);
    const V2VORMessagePtr bobsCopy = localCopy(group.client("bob"), note->msgID());
    QCOMPARE(getExtensions(group.client("bob"), bobsCopy).value(), (Extensions { { kConfig, "first" } }));
    QTRY_COMPARE(atCarol.changed.size(), 1);

    // Neither hears of the other's write before making their own.
    group.server()->holdEvents();
    QCOMPARE(setExtensions(group.client("alice"), note, { { kConfig, "alice's" } }).value().first().resultCode, 0);
    const auto bobs = setExtensions(group.client("bob"), bobsCopy, { { kConfig, "bob's" }, { kBobsEntry, "entry" } });
    QCOMPARE(bobs.code(), 0);
    QCOMPARE(bobs.value().at(0).resultCode, int(V2VOR_ERR_EXTENSION_VERSION_CONFLICT));
    QCOMPARE(bobs.value().at(0).extension, (V2VORMessageExtension { kConfig, "alice's" }));
    QVERIFY(!bobs.value().at(0).resultInfo.isEmpty());
    QCOMPARE(bobs.value().at(1).resultCode, 0);
    QCOMPARE(
        group.server()->extensionsOf(note->msgID()), (Extensions { { kConfig, "alice's" }, { kBobsEntry, "entry" } }));
    QVERIFY(group.server()->heldEventCount() > 0);
    QCOMPARE(atCarol.changed.size(), 1);

    group.server()->releaseEvents();
    QTRY_COMPARE(atCarol.changed.size(), 3);
    QCOMPARE(group.server()->heldEventCount(), 0);

    // The conflict showed bob the latest value, so his next write of the key goes through.
    QCOMPARE(setExtensions(group.client("bob"), bobsCopy, { { kConfig, "bob's" } }).value().first().resultCode, 0);
}

void TestSdkExtensions::differentKeysNeverConflict()
{
    GroupFixture group;
    const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
    QVERIFY(note);
    const V2VORMessagePtr bobsCopy = localCopy(group.client("bob"), note->msgID());
    QVERIFY(bobsCopy);

    group.server()->holdEvents();
    const auto alices = setExtensions(group.client("alice"), note, { { "alice_1_0", "a" } });
    const auto bobs = setExtensions(group.client("bob"), bobsCopy, { { "bob_1_0", "b" } });
    group.server()->releaseEvents();
    QCOMPARE(alices.value().first().resultCode, 0);
    QCOMPARE(bobs.value().first().resultCode, 0);
    QCOMPARE(group.server()->extensionsOf(note->msgID()).size(), 2);
}

void TestSdkExtensions::lateJoinerUsesTheGroupSequence()
{
    GroupFixture group;
    EventRecorder atAlice;
    group.client("alice")->addAdvancedMsgListener(&atAlice);
    const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
    QVERIFY(note);
    QCOMPARE(setExtensions(group.client("alice"), note, { { kConfig, "{}" }, { "alice_1_0", "soup" } }).code(), 0);

    V2VORManager *dave = group.addLateMember(QStringLiteral("dave"));
    QVERIFY(!localCopy(dave, note->msgID()));

    const QVariantMap address { { "groupID", group.groupID() }, { "messageSequence", quint64(note->seq()) } };
    const auto read = callBySequence(dave, QStringLiteral("getMessageExtensionsBySequence"), address);
    QCOMPARE(read.code(), 0);
    QVERIFY(read.value().canConvert<Extensions>());
    QCOMPARE(read.value().value<Extensions>(), (Extensions { { kConfig, "{}" }, { "alice_1_0", "soup" } }));

    QVariantMap write = address;
    write.insert("messageExtensionList",
        QVariant::fromValue(Extensions { { "dave_2_0", "bread" }, { "alice_1_0", "no soup" } }));
    const auto written = callBySequence(dave, QStringLiteral("setMessageExtensionsBySequence"), write);
    QCOMPARE(written.code(), 0);
    const Results results = written.value().value<Results>();
    QCOMPARE(results.size(), 2);
    QCOMPARE(results.at(0).resultCode, 0);
    // Having read the key, dave writes it from the current state.
    QCOMPARE(results.at(1).resultCode, 0);
    QTRY_COMPARE(atAlice.changed.size(), 2);
    QCOMPARE(atAlice.changed.last().first, note->msgID());
    QCOMPARE(group.server()->extensionsOf(note->msgID()).size(), 3);
}

void TestSdkExtensions::sequenceCallsCheckTheirParameters()
{
    GroupFixture group;
    const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
    QVERIFY(note);
    const QString get = QStringLiteral("getMessageExtensionsBySequence");
    const QString set = QStringLiteral("setMessageExtensionsBySequence");
    const QVariantMap address { { "groupID", group.groupID() }, { "messageSequence", quint64(1) } };

    QCOMPARE(callBySequence(group.client("bob"), get, { { "messageSequence", quint64(1) } }).code(),
        int(V2VOR_ERR_INVALID_PARAMETERS));
    QCOMPARE(callBySequence(group.client("bob"), set, address).code(), int(V2VOR_ERR_INVALID_PARAMETERS));
    QCOMPARE(
        callBySequence(group.client("bob"), get, { { "groupID", group.groupID() }, { "messageSequence", 7 } }).code(),
        int(V2VOR_ERR_MESSAGE_NOT_FOUND));
    QCOMPARE(callBySequence(group.addOutsider(QStringLiteral("erin")), get, address).code(),
        int(V2VOR_ERR_NOT_GROUP_MEMBER));
    QVariantMap tooMany = address;
    tooMany.insert("messageExtensionList", QVariant::fromValue(numbered(21)));
    QCOMPARE(callBySequence(group.client("bob"), set, tooMany).code(), int(V2VOR_ERR_EXTENSION_TOO_MANY_IN_CALL));
    QVERIFY(group.server()->extensionsOf(note->msgID()).isEmpty());
}

void TestSdkExtensions::injectedFailures()
{
    GroupFixture group;
    const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
    QVERIFY(note);

    group.server()->failNextCall(QStringLiteral("setMessageExtensions"), 6013, QStringLiteral("not ready"));
    const auto refused = setExtensions(group.client("alice"), note, { { kConfig, "{}" } });
    QCOMPARE(refused.code(), 6013);
    QCOMPARE(refused.desc(), QStringLiteral("not ready"));
    QVERIFY(group.server()->extensionsOf(note->msgID()).isEmpty());
    QCOMPARE(group.server()->callCount(QStringLiteral("setMessageExtensions")), 1);

    group.server()->failNextKey(kConfig, 23999, QStringLiteral("key unavailable"));
    const auto partly = setExtensions(group.client("alice"), note, { { kConfig, "{}" }, { "alice_1_0", "soup" } });
    QCOMPARE(partly.code(), 0);
    QCOMPARE(partly.value().at(0).resultCode, 23999);
    QCOMPARE(partly.value().at(0).resultInfo, QStringLiteral("key unavailable"));
    QCOMPARE(partly.value().at(1).resultCode, 0);
    QCOMPARE(group.server()->extensionsOf(note->msgID()), (Extensions { { "alice_1_0", "soup" } }));

    group.server()->failNextCall(QStringLiteral("getMessageExtensionsBySequence"), 9999, QStringLiteral("offline"));
    const auto bySequence = callBySequence(group.client("bob"), QStringLiteral("getMessageExtensionsBySequence"),
        { { "groupID", group.groupID() }, { "messageSequence", quint64(1) } });
    QCOMPARE(bySequence.code(), 9999);
    QCOMPARE(setExtensions(group.client("alice"), note, { { kConfig, "{}" } }).value().first().resultCode, 0);
}

QTEST_GUILESS_MAIN(TestSdkExtensions)
#include "tst_sdkextensions.moc"
