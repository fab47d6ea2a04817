// Crashes under load: two vor-servers sharing NATS, a client on each. One client writes back to
// back while a vor-server or the NATS server is killed with SIGKILL and started again; every
// acknowledged write survives (read through the client on the other server), each write is
// answered exactly once, the writer's client comes back by itself and the service serves again,
// live events across servers included.
#include "BackToBackWriter.h"
#include "contract/ContractFixture.h"
#include "contract/ServerCluster.h"
#include "sdk/ClientCalls.h"
#include "sdk/EventRecorder.h"

#include "sdk/NetworkBackend.h"
#include "sdk/V2VORErrorCode.h"

#include <QTest>
#include <algorithm>
#include <numeric>

namespace {

constexpr int kRecoveryMs = 15000;
/// Acknowledged writes before the crash, and after it.
constexpr int kWritesBefore = 10;
constexpr int kWritesAfter = 5;

// The fixture's operator is client 0, Alice client 1, Bob client 2: on two servers, Alice talks
// to server 1 and Bob to server 0.
constexpr int kAliceIndex = 1;
constexpr int kBobIndex = 2;

enum class Crash { VorServer, NatsServer, NatsAway };
enum class Writes { Entries, Messages };

/// Every extension key and value of a message as `client` reads it from the service. The
/// reader's server may still be reconnecting to a NATS that was just restarted: a read it
/// refuses meanwhile is tried again, for a while.
QHash<QString, QString> entriesAt(V2VORManager *client, const V2VORMessagePtr &note)
{
    CallOutcome<QList<V2VORMessageExtension>> read;
    const bool answered = QTest::qWaitFor(
        [&] {
            read = {};
            client->getMessageExtensions(note, read.succ(), read.fail());
            return read.wait() && read.code() == 0;
        },
        kRecoveryMs);
    if (!answered)
        return { { QStringLiteral("<read failed>"), QString::number(read.code()) } };
    QHash<QString, QString> entries;
    for (const V2VORMessageExtension &extension : read.value())
        entries.insert(extension.extensionKey, extension.extensionValue);
    return entries;
}

/// The whole history of a group as `client` reads it, oldest first; empty when no complete
/// read succeeded in time (a page refused while the reader's server reconnects starts over).
QList<V2VORMessagePtr> historyAt(V2VORManager *client, const QString &groupID)
{
    QList<V2VORMessagePtr> all;
    const auto readAll = [&] {
        all.clear();
        V2VORMessagePtr before;
        for (;;) {
            CallOutcome<QList<V2VORMessagePtr>> page;
            client->getGroupHistoryMessageList(groupID, 20, before, page.succ(), page.fail());
            if (!page.wait() || page.code() != 0)
                return false;
            if (page.value().isEmpty())
                return true;
            for (const V2VORMessagePtr &message : page.value())
                all.prepend(message);
            before = page.value().constLast();
        }
    };
    if (!QTest::qWaitFor(readAll, kRecoveryMs))
        all.clear();
    return all;
}

} // namespace

Q_DECLARE_METATYPE(Crash)
Q_DECLARE_METATYPE(Writes)

class TestServerRestart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void acknowledgedWritesSurviveACrash_data()
    {
        QTest::addColumn<Crash>("crash");
        QTest::addColumn<Writes>("writes");
        QTest::newRow("vor-server, entries") << Crash::VorServer << Writes::Entries;
        QTest::newRow("vor-server, messages") << Crash::VorServer << Writes::Messages;
        QTest::newRow("nats-server, entries") << Crash::NatsServer << Writes::Entries;
        QTest::newRow("nats-server, messages") << Crash::NatsServer << Writes::Messages;
        // Down long enough for the servers to refuse writes meanwhile.
        QTest::newRow("nats-server away, entries") << Crash::NatsAway << Writes::Entries;
        QTest::newRow("nats-server away, messages") << Crash::NatsAway << Writes::Messages;
    }

    void acknowledgedWritesSurviveACrash()
    {
        QFETCH(Crash, crash);
        QFETCH(Writes, writes);
        ServerCluster cluster(QStringLiteral("nats"), 2);
        QVERIFY2(cluster.startError().isEmpty(), qPrintable(cluster.startError()));
        cluster.setBackoff({ 50, 200, 0 });
        ContractFixture group(cluster, { QStringLiteral("alice"), QStringLiteral("bob") });
        QVERIFY(group.isReady());
        QCOMPARE(cluster.backend(kAliceIndex)->connection()->url(), cluster.server(1).url());
        QCOMPARE(cluster.backend(kBobIndex)->connection()->url(), cluster.server(0).url());
        V2VORManager *alice = group.client("alice");
        V2VORManager *bob = group.client("bob");

        V2VORMessagePtr note;
        if (writes == Writes::Entries)
            QVERIFY(note = sendToGroup(alice, group.groupID(), R"({"businessID":"group_note"})"));
        const V2VORMessagePtr bobsNote = note ? copyAtEventually(bob, note->msgID()) : nullptr;
        QVERIFY(!note || bobsNote);
        EventRecorder atBob(bob);

        BackToBackWriter writer(alice, group.groupID(), note);
        writer.start();
        QTRY_VERIFY(writer.acknowledged().size() >= kWritesBefore);
        // The crash catches a write under way.
        QVERIFY(writer.isWaiting());
        if (crash == Crash::VorServer) {
            cluster.server(1).kill();
            QTRY_VERIFY(alice->connectionState() != V2VOR_CONNECTION_CONNECTED);
            QVERIFY2(cluster.server(1).restart(), qPrintable(cluster.server(1).error()));
        } else if (crash == Crash::NatsServer) {
            QVERIFY2(cluster.nats()->restart(), qPrintable(cluster.nats()->error()));
        } else {
            cluster.nats()->kill();
            QTRY_VERIFY_WITH_TIMEOUT(writer.answers().size() > writer.acknowledged().size(), kRecoveryMs);
            QVERIFY2(cluster.nats()->start(), qPrintable(cluster.nats()->error()));
        }
        const int firstAfter = writer.issued();
        QTRY_VERIFY_WITH_TIMEOUT(writer.acknowledgedFrom(firstAfter) >= kWritesAfter, kRecoveryMs);
        QCOMPARE(alice->connectionState(), V2VOR_CONNECTION_CONNECTED);
        writer.stop();
        QTRY_VERIFY(writer.isIdle());

        // Each write is answered once. A crashed server loses nothing the client has to know
        // about: its calls wait and go out again. Only NATS being away may refuse a write.
        QList<int> answered;
        for (const BackToBackWriter::Answer &answer : writer.answers()) {
            answered.append(answer.write);
            if (answer.code != 0)
                QVERIFY2(crash != Crash::VorServer && answer.code == V2VOR_ERR_SERVICE_UNAVAILABLE,
                    qPrintable(QStringLiteral("write %1 answered %2").arg(answer.write).arg(answer.code)));
        }
        std::sort(answered.begin(), answered.end());
        QList<int> each(writer.issued());
        std::iota(each.begin(), each.end(), 0);
        QCOMPARE(answered, each);

        // A NATS just restarted may still be recovering its streams on a busy machine: what it
        // acknowledged must show within the recovery time, and then stay.
        const QList<int> acknowledged = writer.acknowledged();
        if (writes == Writes::Entries) {
            QHash<QString, QString> entries;
            const auto allThere = [&] {
                entries = entriesAt(bob, bobsNote);
                return std::all_of(acknowledged.begin(), acknowledged.end(), [&](int write) {
                    return entries.value(BackToBackWriter::keyOf(write)) == BackToBackWriter::textOf(write);
                });
            };
            if (!QTest::qWaitFor(allThere, kRecoveryMs))
                qWarning("acknowledged writes still missing after the recovery time");
            for (int write : acknowledged)
                QCOMPARE(entries.value(BackToBackWriter::keyOf(write)), BackToBackWriter::textOf(write));
            QVERIFY(entries.size() <= writer.issued());
        } else {
            // A message stored twice (a resend taken for a new one) shows as a repeated text.
            QStringList texts;
            QList<quint64> seqs;
            const auto allThere = [&] {
                texts.clear();
                seqs.clear();
                for (const V2VORMessagePtr &message : historyAt(bob, group.groupID())) {
                    texts.append(message->text());
                    seqs.append(message->seq());
                }
                return std::all_of(acknowledged.begin(), acknowledged.end(),
                    [&](int write) { return texts.contains(BackToBackWriter::textOf(write)); });
            };
            if (!QTest::qWaitFor(allThere, kRecoveryMs))
                qWarning("acknowledged writes still missing after the recovery time");
            QCOMPARE(texts.removeDuplicates(), 0);
            for (int write : acknowledged)
                QVERIFY2(texts.contains(BackToBackWriter::textOf(write)), qPrintable(BackToBackWriter::textOf(write)));
            QList<quint64> consecutive(seqs.size());
            std::iota(consecutive.begin(), consecutive.end(), quint64(1));
            QCOMPARE(seqs, consecutive);
        }

        // Events cross servers again: with Bob's server back on NATS (it just answered his
        // reads), a new write of Alice's reaches him live.
        const int next = writer.issued();
        if (writes == Writes::Messages)
            QVERIFY(sendText(alice, group.groupID(), BackToBackWriter::textOf(next)));
        else
            QCOMPARE(setExtensions(alice, note, { { BackToBackWriter::keyOf(next), BackToBackWriter::textOf(next) } })
                         .code(),
                0);
        QTRY_VERIFY_WITH_TIMEOUT(heard(atBob, writes, next), kRecoveryMs);
    }

private:
    static V2VORMessagePtr copyAtEventually(V2VORManager *client, const QString &msgID)
    {
        V2VORMessagePtr copy;
        return QTest::qWaitFor([&] { return bool(copy = localCopy(client, msgID)); }, 5000) ? copy : nullptr;
    }

    static bool heard(const EventRecorder &recorder, Writes writes, int write)
    {
        if (writes == Writes::Messages)
            return std::any_of(recorder.newMessages.begin(), recorder.newMessages.end(),
                [write](const V2VORMessagePtr &message) { return message->text() == BackToBackWriter::textOf(write); });
        for (const auto &[msgID, extensions] : recorder.changed) {
            for (const V2VORMessageExtension &extension : extensions) {
                if (extension.extensionKey == BackToBackWriter::keyOf(write))
                    return true;
            }
        }
        return false;
    }
};

QTEST_GUILESS_MAIN(TestServerRestart)
#include "tst_serverrestart.moc"
