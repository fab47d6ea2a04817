// Two servers' backends on one NATS form one messaging service: each hears the other's
// changes, the first writer of a key wins across them, limits and membership hold, and
// nothing acknowledged is lost when NATS is killed and started again.
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
    void receiveModified(const V2VORMessagePtr &copy) override { modified.append(copy); }
    void receiveExtensionsChanged(const QString &, const QList<V2VORMessageExtension> &extensions,
        const QHash<QString, quint64> &versions) override
    {
        changed.append(extensions);
        changedVersions.append(versions);
    }
    void receiveExtensionsDeleted(const QString &, const QStringList &keys, const QHash<QString, quint64> &) override
    {
        deleted.append(keys);
    }
    void receiveConversationChanged(const V2VORConversation &conversation) override
    {
        conversations.append(conversation);
    }

    void reset()
    {
        user.clear();
        newMessages.clear();
        modified.clear();
        changed.clear();
        changedVersions.clear();
        deleted.clear();
        conversations.clear();
    }

    QString user;
    QList<V2VORMessagePtr> newMessages;
    QList<V2VORMessagePtr> modified;
    QList<QList<V2VORMessageExtension>> changed;
    QList<QHash<QString, quint64>> changedVersions;
    QList<QStringList> deleted;
    QList<V2VORConversation> conversations;
};

template<typename T> T capture(const std::function<void(std::function<void(const T &)>)> &call)
{
    T result {};
    call([&](const T &value) { result = value; });
    return result;
}

V2VORMessagePtr note(const QString &msgID, const QString &text = QStringLiteral("sign-up"))
{
    auto message = std::make_shared<V2VORMessage>();
    message->setMsgID(msgID);
    message->setText(text);
    message->setSupportMessageExtension(true);
    return message;
}

} // namespace

class TestNatsBackend : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<NatsServerProcess> m_nats;
    std::unique_ptr<NatsBackend> m_one;
    std::unique_ptr<NatsBackend> m_two;
    Session m_amy;
    Session m_bob;
    Session m_carol;

    std::unique_ptr<NatsBackend> connect()
    {
        QString error;
        auto backend = NatsBackend::create(m_nats->url(), &error);
        if (!backend)
            qWarning() << error;
        return backend;
    }
    void login(NatsBackend &backend, Session &session, const QString &userID)
    {
        backend.attach(&session);
        const CallError error = capture<CallError>([&](auto done) { backend.login(&session, userID, {}, done); });
        QCOMPARE(error.code, 0);
        session.user = userID;
    }
    ServiceReply<V2VORMessagePtr> send(NatsBackend &backend, Session &from, const V2VORMessagePtr &message)
    {
        return capture<ServiceReply<V2VORMessagePtr>>(
            [&](auto reply) { backend.send(&from, message, {}, QStringLiteral("g"), {}, reply); });
    }
    ExtensionReply set(NatsBackend &backend, Session &from, const QString &msgID,
        const QList<V2VORMessageExtension> &extensions, const QHash<QString, quint64> &seen = {})
    {
        return capture<ExtensionReply>([&](auto done) { backend.setExtensions(&from, msgID, extensions, seen, done); });
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
        login(*m_one, m_amy, QStringLiteral("amy"));
        login(*m_two, m_bob, QStringLiteral("bob"));
        login(*m_two, m_carol, QStringLiteral("carol"));
    }
    void cleanup()
    {
        m_one.reset();
        m_two.reset();
        m_nats.reset();
        // Events still queued for the sessions belong to this test only.
        QCoreApplication::processEvents();
        for (Session *session : { &m_amy, &m_bob, &m_carol })
            session->reset();
    }

    void unreachableNatsIsRefused()
    {
        QString error;
        const quint16 port = QUrl(m_nats->url()).port();
        m_nats.reset();
        QVERIFY(!NatsBackend::create(QStringLiteral("nats://127.0.0.1:%1").arg(port), &error));
        QVERIFY(error.contains(QLatin1String("cannot reach")));
    }

    void changesReachSessionsOfTheOtherServer()
    {
        const auto sent = send(*m_one, m_amy, note(QStringLiteral("n1")));
        QCOMPARE(sent.error.code, 0);
        QVERIFY(sent.value->isSelf());
        QTRY_COMPARE(m_bob.newMessages.size(), 1);
        QCOMPARE(m_bob.newMessages.first()->msgID(), QStringLiteral("n1"));
        QVERIFY(!m_bob.newMessages.first()->isSelf());
        QVERIFY(m_carol.newMessages.isEmpty());

        QCOMPARE(
            set(*m_two, m_bob, QStringLiteral("n1"), { { QStringLiteral("1"), QStringLiteral("bob") } }).error.code, 0);
        QTRY_COMPARE(m_amy.changed.size(), 1);
        QCOMPARE(m_amy.changed.first().first().extensionValue, QStringLiteral("bob"));
        // The sender's own session hears its conversation move, never its own message.
        QVERIFY(m_amy.newMessages.isEmpty());
        QVERIFY(!m_amy.conversations.isEmpty());
        QCOMPARE(m_bob.conversations.last().unreadCount, 1);
    }

    void sequencesAreSharedByAllServers()
    {
        QCOMPARE(send(*m_one, m_amy, note(QStringLiteral("a"))).value->seq(), 1u);
        QCOMPARE(send(*m_two, m_bob, note(QStringLiteral("b"))).value->seq(), 2u);
        QCOMPARE(send(*m_one, m_amy, note(QStringLiteral("c"))).value->seq(), 3u);
        const auto at = capture<ServiceReply<QString>>(
            [&](auto reply) { m_two->messageAt(&m_bob, QStringLiteral("g"), 3, reply); });
        QCOMPARE(at.value, QStringLiteral("c"));
        const auto history = capture<ServiceReply<QList<V2VORMessagePtr>>>(
            [&](auto reply) { m_one->history(&m_amy, QStringLiteral("g"), 10, 3, reply); });
        QCOMPARE(history.value.size(), 2);
        QCOMPARE(history.value.first()->msgID(), QStringLiteral("b"));
        // A resend of a message already stored answers it again instead of storing a copy.
        QCOMPARE(send(*m_two, m_amy, note(QStringLiteral("a"))).value->seq(), 1u);
        QCOMPARE(send(*m_two, m_bob, note(QStringLiteral("a"))).error.code, int(V2VOR_ERR_INVALID_PARAMETERS));

        // A sequence the store cannot give back (as while NATS recovers after a restart) makes
        // the history answer "try again", never a list with a hole in it.
        QString error;
        const std::unique_ptr<NatsStore> raw = NatsStore::connect(m_nats->url(), &error);
        QVERIFY2(raw, qPrintable(error));
        const QByteArray second = "m." + NatsKeyCodec::encode(QStringLiteral("g")) + ".2";
        QVERIFY(raw->erase(NatsStore::Messages, second, raw->get(NatsStore::Messages, second).revision).ok());
        const auto holed = capture<ServiceReply<QList<V2VORMessagePtr>>>(
            [&](auto reply) { m_one->history(&m_amy, QStringLiteral("g"), 10, 0, reply); });
        QCOMPARE(holed.error.code, int(V2VOR_ERR_SERVICE_UNAVAILABLE));
    }

    void firstWriterWinsAcrossServers()
    {
        send(*m_one, m_amy, note(QStringLiteral("n1")));
        const QString key = QStringLiteral("entry.1 *>");
        const auto first = set(*m_one, m_amy, QStringLiteral("n1"), { { key, QStringLiteral("amy") } });
        QCOMPARE(first.results.first().resultCode, 0);
        const quint64 version = first.versions.value(key);
        QVERIFY(version > 0);

        const auto late = set(*m_two, m_bob, QStringLiteral("n1"), { { key, QStringLiteral("bob") } });
        QCOMPARE(late.results.first().resultCode, int(V2VOR_ERR_EXTENSION_VERSION_CONFLICT));
        QCOMPARE(late.results.first().extension.extensionValue, QStringLiteral("amy"));
        QCOMPARE(late.versions.value(key), version);

        const auto informed
            = set(*m_two, m_bob, QStringLiteral("n1"), { { key, QStringLiteral("bob") } }, { { key, version } });
        QCOMPARE(informed.results.first().resultCode, 0);
        QVERIFY(informed.versions.value(key) > version);

        // Deleting never conflicts and moves the version on; an old view then loses.
        const auto removed = capture<ExtensionReply>([&](auto done) {
            m_one->deleteExtensions(&m_amy, QStringLiteral("n1"), { key, QStringLiteral("absent") }, done);
        });
        QCOMPARE(removed.results.size(), 2);
        QCOMPARE(removed.versions.keys(), QList<QString> { key });
        QTRY_COMPARE(m_bob.deleted.size(), 1);
        const auto stale
            = set(*m_two, m_bob, QStringLiteral("n1"), { { key, QStringLiteral("again") } }, informed.versions);
        QCOMPARE(stale.results.first().resultCode, int(V2VOR_ERR_EXTENSION_VERSION_CONFLICT));
        QCOMPARE(stale.results.first().extension.extensionValue, QString());
        QCOMPARE(set(*m_two, m_bob, QStringLiteral("n1"), { { key, QStringLiteral("again") } }, removed.versions)
                     .results.first()
                     .resultCode,
            0);
    }

    void listingKeepsFirstWrittenOrder()
    {
        send(*m_one, m_amy, note(QStringLiteral("n1")));
        const auto written = set(*m_one, m_amy, QStringLiteral("n1"),
            { { QStringLiteral("b"), QStringLiteral("1") }, { QStringLiteral("a"), QStringLiteral("2") } });
        set(*m_two, m_bob, QStringLiteral("n1"), { { QStringLiteral("b"), QStringLiteral("3") } }, written.versions);
        const auto listed
            = capture<ExtensionReply>([&](auto done) { m_two->getExtensions(&m_bob, QStringLiteral("n1"), done); });
        QCOMPARE(listed.extensions.size(), 2);
        QCOMPARE(listed.extensions.at(0).extensionKey, QStringLiteral("b"));
        QCOMPARE(listed.extensions.at(0).extensionValue, QStringLiteral("3"));
        QCOMPARE(listed.versions.value(QStringLiteral("a")), written.versions.value(QStringLiteral("a")));
    }

    // A server remembers where each key's life began at the version it last saw. A key
    // deleted and written anew elsewhere began again: writing over it keeps the new beginning,
    // whether this server heard of the change from events or only finds out by reading.
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
        const QString msgID = QStringLiteral("n1");
        const QString k = QStringLiteral("k");
        send(*m_one, m_amy, note(msgID));
        QHash<QString, quint64> seen = set(*m_one, m_amy, msgID, { { k, QStringLiteral("1") } }).versions;
        seen.insert(set(*m_one, m_amy, msgID, { { QStringLiteral("j"), QStringLiteral("2") } }).versions);
        const auto removed
            = capture<ExtensionReply>([&](auto done) { m_two->deleteExtensions(&m_bob, msgID, { k }, done); });
        const auto again = set(*m_two, m_bob, msgID, { { k, QStringLiteral("3") } }, removed.versions);
        QCOMPARE(again.results.first().resultCode, 0);
        if (heardEvents)
            QTRY_COMPARE(m_amy.deleted.size(), 1);
        // Amy's old view loses; the answer brings the current version, which then wins.
        if (staleWriteFirst) {
            const auto stale = set(*m_one, m_amy, msgID, { { k, QStringLiteral("4") } }, seen);
            QCOMPARE(stale.results.first().resultCode, int(V2VOR_ERR_EXTENSION_VERSION_CONFLICT));
            QCOMPARE(stale.versions.value(k), again.versions.value(k));
        }
        QCOMPARE(
            set(*m_one, m_amy, msgID, { { k, QStringLiteral("5") } }, again.versions).results.first().resultCode, 0);

        const auto listed = capture<ExtensionReply>([&](auto done) { m_two->getExtensions(&m_bob, msgID, done); });
        QCOMPARE(listed.extensions.size(), 2);
        QCOMPARE(listed.extensions.at(0).extensionKey, QStringLiteral("j"));
        QCOMPARE(listed.extensions.at(1).extensionValue, QStringLiteral("5"));
    }

    // Members are remembered; one added on another server may act at once and, once the
    // other server has heard of the change, hears its writes too.
    void memberAddedElsewhereActsAndHears()
    {
        const QString msgID = QStringLiteral("n1");
        send(*m_one, m_amy, note(msgID));
        QCOMPARE(
            set(*m_one, m_amy, msgID, { { QStringLiteral("warm"), QStringLiteral("1") } }).results.first().resultCode,
            0);
        capture<CallError>(
            [&](auto done) { m_two->addGroupMember(nullptr, QStringLiteral("g"), QStringLiteral("carol"), {}, done); });
        Session carolHere;
        login(*m_one, carolHere, QStringLiteral("carol"));
        QCOMPARE(set(*m_one, carolHere, msgID, { { QStringLiteral("c"), QStringLiteral("1") } }).error.code, 0);
        m_one->detach(&carolHere);

        capture<CallError>(
            [&](auto done) { m_two->addGroupMember(nullptr, QStringLiteral("g"), QStringLiteral("dave"), {}, done); });
        Session dave;
        login(*m_two, dave, QStringLiteral("dave"));
        int attempt = 0;
        QTRY_VERIFY([&] {
            set(*m_one, m_amy, msgID, { { QStringLiteral("d%1").arg(++attempt), QStringLiteral("x") } });
            QCoreApplication::processEvents();
            return !dave.changed.isEmpty();
        }());
        m_two->detach(&dave);
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
        const QString msgID = QStringLiteral("n1");
        send(*m_one, m_amy, note(msgID));
        QTRY_COMPARE(m_bob.conversations.size(), 1);
        capture<CallError>([&](auto done) { m_two->markGroupRead(&m_bob, QStringLiteral("g"), done); });
        // Carol is logged in on the second server but belongs to no group yet.
        NatsBackend &adding = addedOnTheirServer ? *m_two : *m_one;
        capture<CallError>(
            [&](auto done) { adding.addGroupMember(nullptr, QStringLiteral("g"), QStringLiteral("carol"), {}, done); });
        // Her server tells her of the group as soon as it hears the group's changes.
        QTRY_COMPARE(m_carol.conversations.size(), 1);
        QCOMPARE(m_carol.conversations.first().groupID, QStringLiteral("g"));
        QCOMPARE(m_carol.conversations.first().unreadCount, 1);

        QCOMPARE(set(*m_one, m_amy, msgID, { { QStringLiteral("1"), QStringLiteral("amy") } }).error.code, 0);
        send(*m_one, m_amy, note(QStringLiteral("n2")));
        QTRY_COMPARE(m_carol.newMessages.size(), 1);
        QCOMPARE(m_carol.changed.size(), 1);
        QCOMPARE(m_carol.changed.first().first().extensionValue, QStringLiteral("amy"));
        QCOMPARE(m_carol.newMessages.first()->msgID(), QStringLiteral("n2"));
        QVERIFY(!m_carol.newMessages.first()->isSelf());
        // Members on one server hear the group's move at once, each with their own unread count.
        QTRY_COMPARE(m_carol.conversations.last().unreadCount, 2);
        QTRY_COMPARE(m_bob.conversations.last().unreadCount, 1);
    }

    void everySessionHearsEachChangeOnce()
    {
        const QString msgID = QStringLiteral("n1");
        send(*m_one, m_amy, note(msgID));
        Session bobAgain;
        login(*m_two, bobAgain, QStringLiteral("bob"));
        set(*m_one, m_amy, msgID, { { QStringLiteral("1"), QStringLiteral("a") } });
        set(*m_one, m_amy, msgID, { { QStringLiteral("2"), QStringLiteral("b") } });
        for (Session *session : { &m_bob, &bobAgain }) {
            QTRY_COMPARE(session->changed.size(), 2);
            QCOMPARE(session->changed.last().first().extensionKey, QStringLiteral("2"));
        }

        // Once all of Bob's sessions here are gone, a new one hears from scratch, once.
        m_two->detach(&m_bob);
        m_two->logout(&bobAgain, {});
        Session bobLater;
        login(*m_two, bobLater, QStringLiteral("bob"));
        set(*m_one, m_amy, msgID, { { QStringLiteral("3"), QStringLiteral("c") } });
        set(*m_one, m_amy, msgID, { { QStringLiteral("4"), QStringLiteral("d") } });
        QTRY_COMPARE(bobLater.changed.size(), 2);
        QCOMPARE(bobLater.changed.first().first().extensionKey, QStringLiteral("3"));
        QCOMPARE(bobAgain.changed.size(), 2);
        QCOMPARE(m_bob.changed.size(), 2);
        m_two->detach(&bobLater);
    }

    void firstDirectMessageReachesThePeerElsewhere()
    {
        const auto message = note(QStringLiteral("d1"));
        const auto sent = capture<ServiceReply<V2VORMessagePtr>>(
            [&](auto reply) { m_one->send(&m_amy, message, QStringLiteral("carol"), {}, {}, reply); });
        QCOMPARE(sent.error.code, 0);
        QCOMPARE(sent.value->userID(), QStringLiteral("carol"));
        QTRY_COMPARE(m_carol.newMessages.size(), 1);
        QCOMPARE(m_carol.newMessages.first()->userID(), QStringLiteral("amy"));
        QVERIFY(!m_carol.newMessages.first()->isSelf());
        QTRY_VERIFY(!m_carol.conversations.isEmpty());
        QCOMPARE(m_carol.conversations.last().userID, QStringLiteral("amy"));
        QVERIFY(m_bob.newMessages.isEmpty());
    }

    void liveKeysStopAt300()
    {
        send(*m_one, m_amy, note(QStringLiteral("n1")));
        for (int call = 0; call < 15; ++call) {
            QList<V2VORMessageExtension> batch;
            for (int i = 0; i < 20; ++i)
                batch.append({ QString::number(call * 20 + i), QStringLiteral("x") });
            QCOMPARE(set(*m_one, m_amy, QStringLiteral("n1"), batch).results.last().resultCode, 0);
        }
        const auto over = set(*m_two, m_bob, QStringLiteral("n1"), { { QStringLiteral("300"), QStringLiteral("x") } });
        QCOMPARE(over.results.first().resultCode, int(V2VOR_ERR_EXTENSION_KEY_LIMIT_REACHED));
        const auto removed = capture<ExtensionReply>(
            [&](auto done) { m_two->deleteExtensions(&m_bob, QStringLiteral("n1"), { QStringLiteral("0") }, done); });
        QCOMPARE(set(*m_two, m_bob, QStringLiteral("n1"), { { QStringLiteral("300"), QStringLiteral("x") } })
                     .results.first()
                     .resultCode,
            0);
        QCOMPARE(removed.results.first().resultCode, 0);
    }

    void killedNatsLosesNothingAcknowledged()
    {
        send(*m_one, m_amy, note(QStringLiteral("n1")));
        const auto written
            = set(*m_two, m_bob, QStringLiteral("n1"), { { QStringLiteral("k"), QStringLiteral("kept") } });
        QCOMPARE(written.results.first().resultCode, 0);
        m_one.reset();
        m_two.reset();
        QVERIFY2(m_nats->restart(), qPrintable(m_nats->error()));

        std::unique_ptr<NatsBackend> after = connect();
        QVERIFY(after);
        login(*after, m_amy, QStringLiteral("amy"));
        const auto listed
            = capture<ExtensionReply>([&](auto done) { after->getExtensions(&m_amy, QStringLiteral("n1"), done); });
        QCOMPARE(listed.error.code, 0);
        QCOMPARE(listed.extensions.size(), 1);
        QCOMPARE(listed.versions, written.versions);
        QCOMPARE(send(*after, m_amy, note(QStringLiteral("n2"))).value->seq(), 2u);
        after.reset();
    }
};

QTEST_GUILESS_MAIN(TestNatsBackend)
#include "tst_natsbackend.moc"
