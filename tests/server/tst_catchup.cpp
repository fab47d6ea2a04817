// A client away from the service while the other members, on the other server, keep going:
// when it is back it hears exactly what it missed (the new message, the modified one, the
// extension keys written and the one deleted), each once, whether its server crashed or its
// own connection dropped.
#include "contract/ContractFixture.h"
#include "contract/ServerCluster.h"
#include "sdk/ClientCalls.h"
#include "sdk/EventRecorder.h"

#include "sdk/NetworkBackend.h"
#include "sdk/V2VORConversationListener.h"

#include <QTest>

namespace {

constexpr int kRecoveryMs = 15000;
// The fixture's operator is client 0, Alice client 1 (on server 1), Bob client 2 (on server 0).
constexpr int kAliceIndex = 1;

const QByteArray kNote = R"({"businessID":"group_note","title":"Picnic"})";
const QByteArray kPoll = R"({"businessID":"poll","open":true})";
const QByteArray kClosedPoll = R"({"businessID":"poll","open":false})";

enum class Away { ServerCrashed, ConnectionDropped };

class ConversationRecorder : public V2VORConversationListener
{
public:
    void onConversationChanged(const QList<V2VORConversation> &conversations) override
    {
        changes += int(conversations.size());
    }
    int changes = 0;
};

/// key -> every value heard for it, over all change events of `msgID`; "<other>" collects
/// changes of any other message.
QHash<QString, QStringList> changesOf(const EventRecorder &recorder, const QString &msgID)
{
    QHash<QString, QStringList> heard;
    for (const auto &[changed, extensions] : recorder.changed) {
        for (const V2VORMessageExtension &extension : extensions)
            heard[changed == msgID ? extension.extensionKey : QStringLiteral("<other>")].append(
                extension.extensionValue);
    }
    return heard;
}

} // namespace

Q_DECLARE_METATYPE(Away)

class TestCatchUp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hearsExactlyWhatItMissed_data()
    {
        QTest::addColumn<Away>("away");
        QTest::newRow("server crashed") << Away::ServerCrashed;
        QTest::newRow("connection dropped") << Away::ConnectionDropped;
    }

    void hearsExactlyWhatItMissed()
    {
        QFETCH(Away, away);
        ServerCluster cluster(QStringLiteral("nats"), 2);
        QVERIFY2(cluster.startError().isEmpty(), qPrintable(cluster.startError()));
        cluster.setBackoff({ 50, 200, 0 });
        ContractFixture group(cluster, { QStringLiteral("alice"), QStringLiteral("bob") });
        QVERIFY(group.isReady());
        V2VORManager *alice = group.client("alice");
        V2VORManager *bob = group.client("bob");
        NetworkConnection *alicesConnection = cluster.backend(kAliceIndex)->connection();
        QCOMPARE(alicesConnection->url(), cluster.server(1).url());

        // What Alice holds before she goes: two messages and three keys of the note.
        EventRecorder before(alice);
        const V2VORMessagePtr note = sendToGroup(bob, group.groupID(), kNote);
        const V2VORMessagePtr poll = sendToGroup(bob, group.groupID(), kPoll);
        QVERIFY(note && poll);
        QCOMPARE(setExtensions(bob, note, { { "keep", "1" }, { "change", "1" }, { "gone", "1" } }).code(), 0);
        QTRY_COMPARE(before.newMessages.size(), 2);
        QTRY_COMPARE(changesOf(before, note->msgID()).size(), 3);
        alice->removeAdvancedMsgListener(&before);

        if (away == Away::ServerCrashed)
            cluster.server(1).kill();
        else
            alicesConnection->close();
        QTRY_VERIFY(alice->connectionState() != V2VOR_CONNECTION_CONNECTED);
        EventRecorder missed(alice);
        ConversationRecorder conversations;
        alice->addConversationListener(&conversations);

        const V2VORMessagePtr text = sendText(bob, group.groupID(), QStringLiteral("while you were away"));
        QVERIFY(text);
        poll->customElem()->data = kClosedPoll;
        CallOutcome<> modified;
        bob->modifyMessage(poll, [modified](int code, const QString &desc, const V2VORMessagePtr &) {
            code ? modified.fail()(code, desc) : modified.done()();
        });
        QVERIFY(modified.wait() && modified.code() == 0);
        QCOMPARE(setExtensions(bob, note, { { "change", "2" }, { "new", "1" } }).code(), 0);
        CallOutcome<QList<V2VORMessageExtensionResult>> deleted;
        bob->deleteMessageExtensions(note, { QStringLiteral("gone") }, deleted.succ(), deleted.fail());
        QVERIFY(deleted.wait() && deleted.code() == 0);
        QVERIFY(missed.newMessages.isEmpty() && missed.changed.isEmpty() && missed.deleted.isEmpty());

        if (away == Away::ServerCrashed)
            QVERIFY2(cluster.server(1).restart(), qPrintable(cluster.server(1).error()));
        else
            alicesConnection->open();
        // The conversations come last in a catch-up; a round trip after them lets anything
        // heard twice show.
        QTRY_VERIFY_WITH_TIMEOUT(conversations.changes > 0, kRecoveryMs);
        QCOMPARE(alice->connectionState(), V2VOR_CONNECTION_CONNECTED);
        CallOutcome<QList<V2VORConversation>> roundTrip;
        alice->getConversationList(roundTrip.succ(), roundTrip.fail());
        QVERIFY(roundTrip.wait());

        QCOMPARE(missed.newMessages.size(), 1);
        QCOMPARE(missed.newMessages.first()->msgID(), text->msgID());
        QCOMPARE(missed.newMessages.first()->text(), QStringLiteral("while you were away"));
        QCOMPARE(missed.modified.size(), 1);
        QCOMPARE(missed.modified.first()->msgID(), poll->msgID());
        QCOMPARE(missed.modified.first()->customElem()->data, kClosedPoll);
        const QHash<QString, QStringList> expected { { "change", { "2" } }, { "new", { "1" } } };
        QCOMPARE(changesOf(missed, note->msgID()), expected);
        QCOMPARE(missed.deleted.size(), 1);
        QCOMPARE(missed.deleted.first(), qMakePair(note->msgID(), QStringList { QStringLiteral("gone") }));

        // Back to live: the next change arrives once, as it happens.
        QCOMPARE(setExtensions(bob, note, { { "after", "1" } }).code(), 0);
        QTRY_COMPARE(changesOf(missed, note->msgID()).value("after"), QStringList { "1" });
        QCOMPARE(missed.newMessages.size(), 1);
        alice->removeConversationListener(&conversations);
    }
};

QTEST_GUILESS_MAIN(TestCatchUp)
#include "tst_catchup.moc"
