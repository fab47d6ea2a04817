// Message extensions shared by the members of a group: writes seen by everyone, the limits of
// the service, version conflicts between members, deletion, and a key the service fails alone.
#include "ClientCalls.h"
#include "EventRecorder.h"
#include "support/GroupFixture.h"

#include "sdk/V2VORErrorCode.h"

#include <QTest>

namespace {

using Extensions = QList<V2VORMessageExtension>;
using Results = QList<V2VORMessageExtensionResult>;

const QByteArray kNote = R"({"businessID":"group_note","title":"Lunch"})";
const QString kConfig = QStringLiteral("config");

QList<int> resultCodes(const CallOutcome<Results> &outcome)
{
    QList<int> codes;
    for (const V2VORMessageExtensionResult &result : outcome.value())
        codes << result.resultCode;
    return codes;
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
    void writesInTurnReachEveryMember()
    {
        GroupFixture group;
        EventRecorder atCarol(group.client("carol"));
        const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
        CallOutcome<Results> alices;
        group.client("alice")->setMessageExtensions(note, { { kConfig, "{}" } }, alices.succ(), alices.fail());
        QVERIFY(!alices.arrived() && alices.wait());
        QCOMPARE(resultCodes(alices), QList<int> { 0 });
        const V2VORMessagePtr bobsCopy = localCopy(group.client("bob"), note->msgID());
        QCOMPARE(
            resultCodes(setExtensions(group.client("bob"), bobsCopy, { { "bob_1_0", "soup" } })), QList<int> { 0 });
        QTRY_COMPARE(atCarol.changed.size(), 2);
        QCOMPARE(atCarol.changed.at(0), qMakePair(note->msgID(), Extensions { { kConfig, "{}" } }));

        // Deleted keys leave the list; a key written again goes to its end.
        CallOutcome<Results> deleted;
        group.client("bob")->deleteMessageExtensions(
            bobsCopy, { kConfig, "never-written" }, deleted.succ(), deleted.fail());
        QVERIFY(deleted.wait());
        QCOMPARE(resultCodes(deleted), (QList<int> { 0, 0 }));
        QTRY_COMPARE(atCarol.deleted.value(0).second, QStringList { kConfig });
        QCOMPARE(setExtensions(group.client("alice"), note, { { kConfig, "{ }" } }).code(), 0);
        CallOutcome<Extensions> seenByCarol;
        group.client("carol")->getMessageExtensions(
            localCopy(group.client("carol"), note->msgID()), seenByCarol.succ(), seenByCarol.fail());
        QVERIFY(seenByCarol.wait());
        QCOMPARE(seenByCarol.value(), (Extensions { { "bob_1_0", "soup" }, { kConfig, "{ }" } }));
    }

    void limitsAreRefusedWithTheirCodes()
    {
        GroupFixture group;
        const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
        const CallOutcome<Results> tooMany = setExtensions(group.client("alice"), note, numbered(21));
        QCOMPARE(tooMany.code(), int(V2VOR_ERR_EXTENSION_TOO_MANY_IN_CALL));
        QVERIFY(!tooMany.desc().isEmpty());

        const QString key(V2VORLimits::kMaxExtensionKeyBytes, 'k');
        const QString value(V2VORLimits::kMaxExtensionValueBytes, 'v');
        // 34 characters of three UTF-8 bytes each: short in characters, too long in bytes.
        const QString wideKey(34, QChar(0x540D));
        const auto sizes = setExtensions(group.client("alice"), note,
            { { key, "x" }, { key + 'k', "x" }, { "", "x" }, { wideKey, "x" }, { "v", value }, { "w", value + 'v' } });
        QCOMPARE(resultCodes(sizes),
            (QList<int> { 0, V2VOR_ERR_EXTENSION_KEY_INVALID, V2VOR_ERR_EXTENSION_KEY_INVALID,
                V2VOR_ERR_EXTENSION_KEY_INVALID, 0, V2VOR_ERR_EXTENSION_VALUE_TOO_LONG }));
        QVERIFY(!sizes.value().at(1).resultInfo.isEmpty());

        for (int call = 0; group.server()->extensionsOf(note->msgID()).size() < 300 && call < 20; ++call)
            QCOMPARE(
                setExtensions(group.client("alice"), note, numbered(20, QStringLiteral("c%1_").arg(call))).code(), 0);
        // A full message refuses new keys one by one, while existing keys may still change.
        const auto full = setExtensions(group.client("alice"), note, { { "one-too-many", "x" }, { "v", "changed" } });
        QCOMPARE(resultCodes(full), (QList<int> { V2VOR_ERR_EXTENSION_KEY_LIMIT_REACHED, 0 }));
        QCOMPARE(group.server()->extensionsOf(note->msgID()).size(), V2VORLimits::kMaxExtensionKeysPerMessage);
    }

    void refusedMessages_data()
    {
        QTest::addColumn<QString>("situation");
        QTest::addColumn<int>("code");
        QTest::newRow("writer outside the group") << "outsider" << int(V2VOR_ERR_NOT_GROUP_MEMBER);
        QTest::newRow("message without extension support") << "unsupported" << int(V2VOR_ERR_EXTENSION_NOT_SUPPORTED);
        QTest::newRow("message not sent") << "unsent" << int(V2VOR_ERR_EXTENSION_NOT_SUPPORTED);
    }

    void refusedMessages()
    {
        QFETCH(QString, situation);
        QFETCH(int, code);
        GroupFixture group;
        V2VORManager *writer
            = situation == "outsider" ? group.addOutsider(QStringLiteral("erin")) : group.client("alice");
        V2VORMessagePtr message = situation == "unsent"
            ? group.client("alice")->createCustomMessage(kNote)
            : sendToGroup(group.client("alice"), group.groupID(), kNote, situation != "unsupported");
        CallOutcome<Extensions> read;
        writer->getMessageExtensions(message, read.succ(), read.fail());
        QCOMPARE(setExtensions(writer, message, { { "k", "v" } }).code(), code);
        QVERIFY(read.wait());
        QCOMPARE(read.code(), code);
    }

    void sameKeyFromTheSameStateConflicts()
    {
        GroupFixture group;
        EventRecorder atCarol(group.client("carol"));
        const V2VORMessagePtr note = sendToGroup(group.client("alice"), group.groupID(), kNote);
        QCOMPARE(setExtensions(group.client("alice"), note, { { kConfig, "first" } }).code(), 0);
        const V2VORMessagePtr bobsCopy = localCopy(group.client("bob"), note->msgID());
        QTRY_COMPARE(atCarol.changed.size(), 1);

        // Neither hears of the other's write before making their own; other keys never conflict.
        group.server()->holdEvents();
        QCOMPARE(resultCodes(setExtensions(group.client("alice"), note, { { kConfig, "alice's" } })), QList<int> { 0 });
        const auto bobs
            = setExtensions(group.client("bob"), bobsCopy, { { kConfig, "bob's" }, { "bob_1_0", "entry" } });
        QCOMPARE(resultCodes(bobs), (QList<int> { V2VOR_ERR_EXTENSION_VERSION_CONFLICT, 0 }));
        QCOMPARE(bobs.value().at(0).extension, (V2VORMessageExtension { kConfig, "alice's" }));
        QCOMPARE(group.server()->extensionsOf(note->msgID()),
            (Extensions { { kConfig, "alice's" }, { "bob_1_0", "entry" } }));
        QCOMPARE(atCarol.changed.size(), 1);
        group.server()->releaseEvents();
        QTRY_COMPARE(atCarol.changed.size(), 3);

        // The conflict showed bob the latest value, so his next write of the key goes through.
        QCOMPARE(resultCodes(setExtensions(group.client("bob"), bobsCopy, { { kConfig, "bob's" } })), QList<int> { 0 });
    }
};

QTEST_GUILESS_MAIN(TestSdkExtensions)
#include "tst_sdkextensions.moc"
