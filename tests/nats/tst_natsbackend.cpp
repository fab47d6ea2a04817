// Two servers' backends on one NATS form one messaging service: each hears the other's
// changes in order, remembers where each key's life began, lets members added elsewhere in,
// and nothing acknowledged is lost when NATS is killed and started again.
#include "server/nats/NatsBackend.h"
#include "server/nats/NatsKeyCodec.h"
#include "server/nats/NatsStore.h"
#include "support/NatsServerProcess.h"

#include <QCoreApplication>
#include <QTest>
#include <memory>

namespace {

class Session : public QObject, public MessagingSession
{
public:
    QString sessionUserID() const override { return user; }
    QObject *sessionContext() override { return this; }
    void receiveNewMessage(const V2VORMessagePtr &copy) override { newMessages.append(copy); }
    void receiveModified(const V2VORMessagePtr &) override { }
    void receiveExtensionsChanged(
        const QString &, const QList<V2VORMessageExtension> &, const QHash<QString, quint64> &) override
    {
    }
    void receiveExtensionsDeleted(const QString &, const QStringList &, const QHash<QString, quint64> &) override
    {
        ++deleted;
    }
    void receiveConversationChanged(const V2VORConversation &conversation) override
    {
        conversations.append(conversation);
    }

    QString user;
    QList<V2VORMessagePtr> newMessages;
    int deleted = 0;
    QList<V2VORConversation> conversations;
};

template<typename T> T capture(const std::function<void(std::function<void(const T &)>)> &call)
{
    T result {};
    call([&](const T &value) { result = value; });
    return result;
}

using Versions = QHash<QString, quint64>;
const QString kNote = QStringLiteral("n1");

} // namespace

class TestNatsBackend : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<NatsServerProcess> m_nats;
    std::unique_ptr<NatsBackend> m_one;
    std::unique_ptr<NatsBackend> m_two;
    std::unique_ptr<Session> m_amy, m_bob, m_carol;

    std::unique_ptr<NatsBackend> connect()
    {
        QString error;
        return NatsBackend::create(m_nats->url(), &error);
    }
    std::unique_ptr<Session> login(NatsBackend &backend, const QString &userID)
    {
        auto session = std::make_unique<Session>();
        session->user = userID;
        backend.attach(session.get());
        capture<CallError>([&](auto done) { backend.login(session.get(), userID, {}, done); });
        return session;
    }
    /// Sends a note to the group, or to `peer` alone.
    ServiceReply<V2VORMessagePtr> send(
        NatsBackend &backend, Session &from, const QString &msgID, const QString &peer = {})
    {
        auto note = std::make_shared<V2VORMessage>();
        note->setMsgID(msgID);
        note->setSupportMessageExtension(true);
        const QString group = peer.isEmpty() ? QStringLiteral("g") : QString();
        return capture<ServiceReply<V2VORMessagePtr>>(
            [&](auto reply) { backend.send(&from, note, peer, group, {}, reply); });
    }
    ExtensionReply set(
        NatsBackend &backend, Session &from, const QString &key, const QString &value, const Versions &seen = {})
    {
        return capture<ExtensionReply>([&](auto done) {
            backend.setExtensions(&from, kNote, { { key, value } }, seen, done);
        });
    }
    static int code(const ExtensionReply &reply)
    {
        return reply.error.code ? reply.error.code : reply.results.first().resultCode;
    }
    ServiceReply<QList<V2VORMessagePtr>> history(NatsBackend &backend, Session &as)
    {
        return capture<ServiceReply<QList<V2VORMessagePtr>>>(
            [&](auto reply) { backend.history(&as, QStringLiteral("g"), 10, 0, reply); });
    }

private Q_SLOTS:
    void init()
    {
        m_nats = std::make_unique<NatsServerProcess>();
        QVERIFY2(m_nats->isRunning(), qPrintable(m_nats->error()));
        m_one = connect();
        m_two = connect();
        QVERIFY(m_one && m_two);
        capture<CallError>([&](auto done) {
            m_one->createGroup(nullptr, QStringLiteral("g"), { QStringLiteral("amy"), QStringLiteral("bob") }, done);
        });
        m_amy = login(*m_one, QStringLiteral("amy"));
        m_bob = login(*m_two, QStringLiteral("bob"));
        m_carol = login(*m_two, QStringLiteral("carol"));
    }
    void cleanup()
    {
        m_one.reset();
        m_two.reset();
        m_nats.reset();
        // Sessions go last: events still queued for them go with them.
        m_amy.reset();
        m_bob.reset();
        m_carol.reset();
    }

    void resendsAnswerTheStoredMessageAndHistoryHasNoHoles()
    {
        QCOMPARE(send(*m_one, *m_amy, QStringLiteral("a")).value->seq(), 1u);
        QCOMPARE(send(*m_two, *m_bob, QStringLiteral("b")).value->seq(), 2u);
        // A resend of a message already stored answers it again instead of storing a copy.
        QCOMPARE(send(*m_two, *m_amy, QStringLiteral("a")).value->seq(), 1u);
        QCOMPARE(history(*m_one, *m_amy).value.size(), 2);
        QCOMPARE(send(*m_two, *m_bob, QStringLiteral("a")).error.code, int(V2VOR_ERR_INVALID_PARAMETERS));

        // A sequence the store cannot give back (as while NATS recovers after a restart) makes
        // the history answer "try again", never a list with a hole in it.
        QString error;
        const std::unique_ptr<NatsStore> raw = NatsStore::connect(m_nats->url(), &error);
        QVERIFY2(raw, qPrintable(error));
        const QByteArray second = "m." + NatsKeyCodec::encode(QStringLiteral("g")) + ".2";
        QVERIFY(raw->erase(NatsStore::Messages, second, raw->get(NatsStore::Messages, second).revision).ok());
        QCOMPARE(history(*m_one, *m_amy).error.code, int(V2VOR_ERR_SERVICE_UNAVAILABLE));
    }

    // A server remembers where each key's life began at the version it last saw. A key
    // deleted and written anew elsewhere began again: writing over it keeps the new beginning,
    // whether this server heard of the change from events or only finds out by reading.
    // Overwriting never moves a key: listings keep first-written order.
    void rewrittenKeyKeepsItsNewBeginning_data()
    {
        QTest::addColumn<bool>("heardEvents");
        QTest::addColumn<bool>("staleWriteFirst");
        QTest::newRow("events heard") << true << true;
        QTest::newRow("stale view first") << false << true;
        // As a client that read the new version through another server.
        QTest::newRow("version learned elsewhere") << false << false;
    }
    void rewrittenKeyKeepsItsNewBeginning()
    {
        QFETCH(bool, heardEvents);
        QFETCH(bool, staleWriteFirst);
        const QString k = QStringLiteral("k");
        send(*m_one, *m_amy, kNote);
        Versions seen = set(*m_one, *m_amy, k, QStringLiteral("1")).versions;
        seen.insert(set(*m_one, *m_amy, QStringLiteral("j"), QStringLiteral("2")).versions);
        const auto removed
            = capture<ExtensionReply>([&](auto done) { m_two->deleteExtensions(m_bob.get(), kNote, { k }, done); });
        const auto again = set(*m_two, *m_bob, k, QStringLiteral("3"), removed.versions);
        QCOMPARE(code(again), 0);
        QCOMPARE(code(set(*m_two, *m_bob, QStringLiteral("j"), QStringLiteral("6"), seen)), 0);
        if (heardEvents)
            QTRY_COMPARE(m_amy->deleted, 1);
        // Amy's old view loses; the answer brings the current version, which then wins.
        if (staleWriteFirst) {
            const auto stale = set(*m_one, *m_amy, k, QStringLiteral("4"), seen);
            QCOMPARE(code(stale), int(V2VOR_ERR_EXTENSION_VERSION_CONFLICT));
            QCOMPARE(stale.versions.value(k), again.versions.value(k));
        }
        QCOMPARE(code(set(*m_one, *m_amy, k, QStringLiteral("5"), again.versions)), 0);

        const auto listed = capture<ExtensionReply>([&](auto done) { m_two->getExtensions(m_bob.get(), kNote, done); });
        QCOMPARE(listed.extensions,
            (QList<V2VORMessageExtension> {
                { QStringLiteral("j"), QStringLiteral("6") }, { k, QStringLiteral("5") } }));
    }

    void memberJoiningHearsTheNextChange_data()
    {
        QTest::addColumn<bool>("addedOnTheirServer");
        QTest::newRow("added on the other server") << false;
        QTest::newRow("added on their own server") << true;
    }
    void memberJoiningHearsTheNextChange()
    {
        QFETCH(bool, addedOnTheirServer);
        send(*m_one, *m_amy, kNote);
        QTRY_COMPARE(m_bob->conversations.size(), 1);
        capture<CallError>([&](auto done) { m_two->markGroupRead(m_bob.get(), QStringLiteral("g"), done); });
        // Carol is logged in on the second server but belongs to no group yet.
        NatsBackend &adding = addedOnTheirServer ? *m_two : *m_one;
        capture<CallError>(
            [&](auto done) { adding.addGroupMember(nullptr, QStringLiteral("g"), QStringLiteral("carol"), {}, done); });
        // Her server lets her in at once, even before it hears of the change.
        QCOMPARE(history(*m_two, *m_carol).error.code, 0);
        QTRY_COMPARE(m_carol->conversations.size(), 1);
        QCOMPARE(m_carol->conversations.first().unreadCount, 1);

        send(*m_one, *m_amy, QStringLiteral("n2"));
        QTRY_COMPARE(m_carol->newMessages.size(), 1);
        // Each member hears the group's move with their own unread count.
        QTRY_COMPARE(m_carol->conversations.last().unreadCount, 2);
        QTRY_COMPARE(m_bob->conversations.last().unreadCount, 1);
    }

    // Deleting a live key frees its place under the limit, whichever server counts.
    void deletingFreesAPlaceUnderTheKeyLimit()
    {
        send(*m_one, *m_amy, kNote);
        for (int call = 0; call < 15; ++call) {
            QList<V2VORMessageExtension> batch;
            for (int i = 0; i < 20; ++i)
                batch.append({ QString::number(call * 20 + i), QStringLiteral("x") });
            const auto written = capture<ExtensionReply>(
                [&](auto done) { m_one->setExtensions(m_amy.get(), kNote, batch, {}, done); });
            QCOMPARE(written.results.last().resultCode, 0);
        }
        const QString key = QStringLiteral("300");
        QCOMPARE(code(set(*m_two, *m_bob, key, key)), int(V2VOR_ERR_EXTENSION_KEY_LIMIT_REACHED));
        capture<ExtensionReply>(
            [&](auto done) { m_two->deleteExtensions(m_bob.get(), kNote, { QStringLiteral("7") }, done); });
        QCOMPARE(code(set(*m_two, *m_bob, key, key)), 0);
    }

    void firstDirectMessageReachesThePeerElsewhere()
    {
        const auto sent = send(*m_one, *m_amy, QStringLiteral("d1"), QStringLiteral("carol"));
        QCOMPARE(sent.value->userID(), QStringLiteral("carol"));
        QTRY_COMPARE(m_carol->newMessages.size(), 1);
        QCOMPARE(m_carol->newMessages.first()->userID(), QStringLiteral("amy"));
        QVERIFY(!m_carol->newMessages.first()->isSelf());
        QTRY_VERIFY(!m_carol->conversations.isEmpty());
        QCOMPARE(m_carol->conversations.last().userID, QStringLiteral("amy"));
        QVERIFY(m_bob->newMessages.isEmpty());
    }

    void killedNatsLosesNothingAcknowledged()
    {
        send(*m_one, *m_amy, kNote);
        const auto written = set(*m_two, *m_bob, QStringLiteral("k"), QStringLiteral("kept"));
        QCOMPARE(code(written), 0);
        m_one.reset();
        m_two.reset();
        QVERIFY2(m_nats->restart(), qPrintable(m_nats->error()));

        m_one = connect();
        QVERIFY(m_one);
        const std::unique_ptr<Session> amy = login(*m_one, QStringLiteral("amy"));
        const auto listed = capture<ExtensionReply>([&](auto done) { m_one->getExtensions(amy.get(), kNote, done); });
        QCOMPARE(listed.extensions.size(), 1);
        QCOMPARE(listed.versions, written.versions);
        QCOMPARE(send(*m_one, *amy, QStringLiteral("n2")).value->seq(), 2u);
        m_one->detach(amy.get());
    }
};

QTEST_GUILESS_MAIN(TestNatsBackend)
#include "tst_natsbackend.moc"
