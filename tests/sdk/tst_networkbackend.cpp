// The messaging client over the network against a server whose every answer the test scripts:
// login, replies out of order, unreadable replies, drops in the middle of calls, reconnection
// back-off, calls waiting for the connection, and catching up on more than a page after a drop.
#include "CallOutcome.h"
#include "EventRecorder.h"
#include "ScriptedServer.h"

#include "platform/ManualClock.h"
#include "sdk/NetworkBackend.h"
#include "sdk/V2VORManager.h"

#include <QSignalSpy>
#include <QTest>

using ServiceProtocol::Request;

namespace {

const QString kGroup = QStringLiteral("g1");

QJsonObject messageJson(const QString &msgID, quint64 seq, bool supportExtension = false)
{
    V2VORMessage message;
    message.setMsgID(msgID);
    message.setSeq(seq);
    message.setGroupID(kGroup);
    message.setSender(QStringLiteral("bob"));
    message.setText(msgID);
    message.setStatus(V2VOR_MSG_STATUS_SEND_SUCC);
    message.setSupportMessageExtension(supportExtension);
    return ServiceProtocol::toJson(message);
}

/// One client of the scripted server, on a clock the test drives.
struct Rig
{
    Rig()
    {
        QVERIFY(server.listen());
        auto backend = std::make_unique<NetworkBackend>(server.url());
        network = backend.get();
        network->connection()->setBackoff({ 500, 30000, 0 });
        client = std::make_unique<V2VORManager>(std::move(backend));
        recorder = std::make_unique<EventRecorder>(client.get());
    }

    CallOutcome<> login(const QString &token = QStringLiteral("alice"))
    {
        client->setLoginToken(token);
        CallOutcome<> outcome;
        client->login(QStringLiteral("alice"), outcome.done(), outcome.fail());
        outcome.wait();
        return outcome;
    }
    /// The server drops the client; answers the first retry it schedules, or, with
    /// `comeBack`, lets it reconnect after that delay.
    int drop(bool comeBack = true)
    {
        QSignalSpy retries(network->connection(), &NetworkConnection::retryScheduled);
        const int hellos = server.requests(QStringLiteral("hello")).size();
        server.drop();
        if (!retries.wait(5000))
            return -1;
        const int delay = retries.first().first().toInt();
        if (!comeBack)
            return delay;
        clock.advance(delay);
        return server.waitFor(QStringLiteral("hello"), hellos + 1) ? delay : -1;
    }
    /// Answers every history request with the newest `count` of `*stored` (newest first) older
    /// than `beforeSeq`.
    void serveHistory(const QList<QJsonObject> *stored)
    {
        server.handlers.insert(QStringLiteral("history"), [this, stored](const Request &request) {
            const quint64 before = request.args.value(QStringLiteral("beforeSeq")).toInteger();
            QJsonArray result;
            for (const QJsonObject &message : *stored) {
                const quint64 seq = message.value(QStringLiteral("seq")).toInteger();
                if ((before == 0 || seq < before) && result.size() < request.args.value("count").toInt())
                    result.append(message);
            }
            server.reply(request.id, { { QStringLiteral("messages"), result } });
        });
    }
    int heldHistory()
    {
        CallOutcome<QList<V2VORMessagePtr>> held;
        client->getGroupHistoryMessageList(kGroup, 20, nullptr, held.succ(), held.fail());
        return held.wait() ? held.value().size() : -1;
    }

    platform::ManualClock clock;
    ScriptedServer server;
    NetworkBackend *network = nullptr;
    std::unique_ptr<V2VORManager> client;
    std::unique_ptr<EventRecorder> recorder;
};

} // namespace

class TestNetworkBackend : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A server that knows the token as another user fails the login.
    void loginProvesTheUser()
    {
        Rig rig;
        QCOMPARE(rig.login(QStringLiteral("bob")).code(), int(V2VOR_ERR_AUTH_FAILED));
        QCOMPARE(rig.client->getLoginStatus(), V2VOR_STATUS_LOGOUT);
        QTRY_COMPARE(rig.client->connectionState(), V2VOR_CONNECTION_DISCONNECTED);
    }

    void repliesAreMatchedByID()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        rig.server.handlers.remove(QStringLiteral("usersInfo"));
        rig.server.handlers.remove(QStringLiteral("conversationList"));
        CallOutcome<QList<V2VORUserFullInfo>> users;
        CallOutcome<QList<V2VORConversation>> conversations;
        rig.client->getUsersInfo({ QStringLiteral("bob") }, users.succ(), users.fail());
        rig.client->getConversationList(conversations.succ(), conversations.fail());
        QVERIFY(rig.server.waitFor(QStringLiteral("conversationList")));
        // The later request is answered first.
        rig.server.reply(rig.server.requests(QStringLiteral("conversationList")).first().id,
            { { QStringLiteral("conversations"), QJsonArray() } });
        const QJsonObject bob { { QStringLiteral("userID"), QStringLiteral("bob") },
            { QStringLiteral("nickName"), QStringLiteral("Bob") } };
        rig.server.reply(rig.server.requests(QStringLiteral("usersInfo")).last().id,
            { { QStringLiteral("users"), QJsonArray { bob } } });
        QVERIFY(users.wait() && conversations.wait());
        QCOMPARE(conversations.code(), 0);
        QCOMPARE(users.value().size(), 1);
        QCOMPARE(users.value().first().nickName, QStringLiteral("Bob"));
    }

    void unreadableRepliesFailTheCall()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        CallOutcome<QList<V2VORMessagePtr>> history;
        rig.client->getGroupHistoryMessageList(kGroup, 20, nullptr, history.succ(), history.fail());
        QVERIFY(rig.server.waitFor(QStringLiteral("history")));
        const QJsonObject illTyped { { QStringLiteral("seq"), "one" } };
        rig.server.reply(rig.server.requests(QStringLiteral("history")).first().id,
            { { QStringLiteral("messages"), QJsonArray { illTyped } } });
        QVERIFY(history.wait());
        QCOMPARE(history.code(), int(V2VOR_ERR_PROTOCOL_MALFORMED));
        // Frames that are no reply or no event one can read change nothing, and the connection
        // goes on.
        rig.server.sendRaw("not json");
        rig.server.sendRaw(R"({"v":1,"re":9999,"code":0})");
        rig.server.event(QStringLiteral("newMessage"), { { QStringLiteral("message"), 7 } });
        rig.server.event(QStringLiteral("noSuchEvent"), {});
        CallOutcome<> read;
        rig.client->markGroupMessageAsRead(kGroup, read.done(), read.fail());
        QVERIFY(rig.server.waitFor(QStringLiteral("markGroupRead")));
        rig.server.reply(rig.server.requests(QStringLiteral("markGroupRead")).first().id);
        QVERIFY(read.wait());
        QCOMPARE(read.code(), 0);
        QVERIFY(rig.recorder->newMessages.isEmpty());
    }

    // Calls in flight go out again after a drop; a write that had landed before the drop
    // comes back as a conflict with our own value, which counts as done.
    void callsInFlightGoOutAgainAfterADrop()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        V2VORMessagePtr message = rig.client->createTextMessage(QStringLiteral("hi"));
        CallOutcome<> sent;
        const QString msgID = rig.client->sendMessage(
            message, {}, kGroup, V2VOR_PRIORITY_DEFAULT, false, std::nullopt, nullptr, sent.done(), sent.fail());
        QVERIFY(msgID.startsWith(QStringLiteral("msg-")) && msgID.size() == 4 + 32);
        V2VORMessagePtr note = ServiceProtocol::messageFromJson(messageJson(QStringLiteral("m1"), 1, true));
        CallOutcome<QList<V2VORMessageExtensionResult>> written;
        rig.client->setMessageExtensions(note,
            { { QStringLiteral("k"), QStringLiteral("mine") }, { QStringLiteral("j"), QStringLiteral("mine") } },
            written.succ(), written.fail());
        QVERIFY(rig.server.waitFor(QStringLiteral("setExtensions")));
        QVERIFY(rig.drop() > 0);
        QVERIFY(rig.server.waitFor(QStringLiteral("sendMessage"), 2));
        QVERIFY(rig.server.waitFor(QStringLiteral("setExtensions"), 2));
        const QList<Request> sends = rig.server.requests(QStringLiteral("sendMessage"));
        for (const Request &send : sends)
            QCOMPARE(send.args.value("message").toObject().value("msgID").toString(), msgID);
        QVERIFY(!sent.arrived());
        rig.server.reply(sends.at(1).id, { { QStringLiteral("message"), messageJson(msgID, 4) } });
        QVERIFY(sent.wait());
        QCOMPARE(sent.code(), 0);
        QCOMPARE(message->seq(), quint64(4));

        QJsonArray conflicts;
        for (const char *value : { "mine", "theirs" })
            conflicts.append(QJsonObject { { "code", V2VOR_ERR_EXTENSION_VERSION_CONFLICT }, { "info", "changed" },
                { "key", value[0] == 'm' ? "k" : "j" }, { "value", value } });
        rig.server.reply(rig.server.requests(QStringLiteral("setExtensions")).at(1).id,
            { { QStringLiteral("results"), conflicts },
                { QStringLiteral("versions"), QJsonObject { { "k", 1 }, { "j", 1 } } } });
        QVERIFY(written.wait());
        QCOMPARE(written.value().size(), 2);
        QCOMPARE(written.value().at(0).resultCode, 0);
        QCOMPARE(written.value().at(1).resultCode, int(V2VOR_ERR_EXTENSION_VERSION_CONFLICT));
    }

    void callsWaitForTheConnectionForAWhile_data()
    {
        QTest::addColumn<bool>("loggedIn");
        QTest::newRow("a call after a drop") << true;
        QTest::newRow("a login with no server") << false;
    }
    void callsWaitForTheConnectionForAWhile()
    {
        QFETCH(bool, loggedIn);
        Rig rig;
        QVERIFY(!loggedIn || !rig.login().code());
        rig.server.stopListening();
        CallOutcome<> waiting;
        if (loggedIn && rig.drop(false) > 0)
            rig.client->markGroupMessageAsRead(kGroup, waiting.done(), waiting.fail());
        else if (!loggedIn)
            rig.client->login(QStringLiteral("alice"), waiting.done(), waiting.fail());
        QTRY_COMPARE(rig.client->connectionState(), V2VOR_CONNECTION_CONNECTING);
        rig.clock.advance(29000);
        QCoreApplication::processEvents();
        QVERIFY(!waiting.arrived());
        rig.clock.advance(1000);
        QVERIFY(waiting.wait());
        QCOMPARE(waiting.code(), int(V2VOR_ERR_SERVICE_UNAVAILABLE));
        if (!loggedIn)
            QTRY_COMPARE(rig.client->connectionState(), V2VOR_CONNECTION_DISCONNECTED);
    }

    void retriesOfAnAbsentServerBackOff()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        rig.server.stopListening();
        QSignalSpy retries(rig.network->connection(), &NetworkConnection::retryScheduled);
        rig.server.drop();
        for (int attempt = 1; attempt <= 3; ++attempt) {
            QVERIFY(retries.wait(5000));
            rig.clock.advance(retries.last().first().toInt());
        }
        QVERIFY(retries.wait(5000));
        QList<int> delays;
        for (const QList<QVariant> &retry : std::as_const(retries))
            delays.append(retry.first().toInt());
        QCOMPARE(delays, (QList<int> { 500, 1000, 2000, 4000 }));
        // Far out the delay stays at its cap; jitter only ever shortens it, by up to half.
        QCOMPARE((NetworkConnection::Backoff { 500, 30000, 0 }.delayAfter(1000)), 30000);
        const int jittered = NetworkConnection::Backoff { 500, 30000, 0.5 }.delayAfter(7);
        QVERIFY(jittered >= 15000 && jittered <= 30000);
    }

    // Catching up reaches back page by page (22 missed, pages of 20) to the oldest message
    // held, and reports each message missed once, in order.
    void catchUpDeliversEveryPageMissed()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        QList<QJsonObject> stored { messageJson("m3", 3), messageJson("m2", 2), messageJson("m1", 1) };
        rig.serveHistory(&stored);
        QCOMPARE(rig.heldHistory(), 3);
        QStringList missed;
        for (int seq = 4; seq <= 25; ++seq) {
            missed.append(QStringLiteral("m%1").arg(seq));
            stored.prepend(messageJson(missed.last(), seq));
        }
        QVERIFY(rig.drop() > 0);
        QVERIFY(rig.server.waitFor(QStringLiteral("conversationList")));
        QCOMPARE(rig.heldHistory(), 20); // a round trip: whatever catching up reports is in
        QStringList delivered;
        for (const V2VORMessagePtr &message : std::as_const(rig.recorder->newMessages))
            delivered.append(message->msgID());
        QCOMPARE(delivered, missed);
    }

    void catchUpSkipsOurOwnResentMessage()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        QList<QJsonObject> stored { messageJson("m1", 1) };
        rig.serveHistory(&stored);
        QCOMPARE(rig.heldHistory(), 1);
        const int delay = rig.drop(false);
        QVERIFY(delay > 0);
        // Sent while offline (the retry waits for the clock): it goes out once the connection
        // is back, before the catching up.
        CallOutcome<> sent;
        const QString msgID = rig.client->sendMessage(rig.client->createTextMessage(QStringLiteral("mine")), {}, kGroup,
            V2VOR_PRIORITY_DEFAULT, false, std::nullopt, nullptr, sent.done(), sent.fail());
        rig.server.handlers.insert(QStringLiteral("sendMessage"), [&, msgID](const Request &request) {
            QJsonObject mine = messageJson(msgID, 2);
            mine.insert(QStringLiteral("isSelf"), true);
            stored.prepend(mine);
            rig.server.reply(request.id, { { QStringLiteral("message"), mine } });
        });
        rig.clock.advance(delay);
        QVERIFY(sent.wait());
        QCOMPARE(sent.code(), 0);
        QVERIFY(rig.server.waitFor(QStringLiteral("conversationList")));
        QCOMPARE(rig.heldHistory(), 2);
        QVERIFY(rig.recorder->newMessages.isEmpty());
    }
};

QTEST_MAIN(TestNetworkBackend)
#include "tst_networkbackend.moc"
