// The messaging client over the network against a server whose every answer the test scripts:
// login, replies out of order, unreadable replies, pushed events, drops in the middle of calls,
// reconnection back-off, calls waiting for the connection, and catching up after a drop.
#include "CallOutcome.h"
#include "EventRecorder.h"
#include "ScriptedServer.h"

#include "platform/ManualClock.h"
#include "sdk/NetworkBackend.h"
#include "sdk/V2VORConversationListener.h"
#include "sdk/V2VORManager.h"

#include <QSignalSpy>
#include <QTest>

using ServiceProtocol::Request;

namespace {

const QString kGroup = QStringLiteral("g1");

QJsonObject messageJson(const QString &msgID, quint64 seq, quint64 version = 1, bool supportExtension = false)
{
    V2VORMessage message;
    message.setMsgID(msgID);
    message.setSeq(seq);
    message.setGroupID(kGroup);
    message.setUserID(QStringLiteral("bob"));
    message.setSender(QStringLiteral("bob"));
    message.setElemType(V2VOR_ELEM_TYPE_TEXT);
    message.setText(msgID);
    message.setStatus(V2VOR_MSG_STATUS_SEND_SUCC);
    message.setMessageVersion(version);
    message.setSupportMessageExtension(supportExtension);
    return ServiceProtocol::toJson(message);
}

QJsonObject page(const QList<QJsonObject> &messages)
{
    QJsonArray array;
    for (const QJsonObject &message : messages)
        array.append(message);
    return { { QStringLiteral("messages"), array } };
}

QJsonObject extensions(const QList<std::tuple<QString, QString, quint64>> &keys)
{
    QJsonArray list;
    QJsonObject versions;
    for (const auto &[key, value, version] : keys) {
        list.append(QJsonObject { { QStringLiteral("key"), key }, { QStringLiteral("value"), value } });
        versions.insert(key, double(version));
    }
    return { { QStringLiteral("extensions"), list }, { QStringLiteral("versions"), versions } };
}

class ConversationRecorder : public V2VORConversationListener
{
public:
    void onConversationChanged(const QList<V2VORConversation> &conversations) override { changed += conversations; }
    QList<V2VORConversation> changed;
};

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
        client->addConversationListener(&conversations);
    }
    ~Rig() { client->removeConversationListener(&conversations); }

    CallOutcome<> login(const QString &user = QStringLiteral("alice"), const QString &token = QStringLiteral("alice"))
    {
        client->setLoginToken(token);
        CallOutcome<> outcome;
        client->login(user, outcome.done(), outcome.fail());
        outcome.wait();
        return outcome;
    }
    /// The server drops the client, which comes back after its first back-off delay.
    bool dropAndReconnect()
    {
        QSignalSpy retries(network->connection(), &NetworkConnection::retryScheduled);
        const int hellos = server.requests(QStringLiteral("hello")).size();
        server.drop();
        if (!retries.wait(5000))
            return false;
        clock.advance(retries.first().first().toInt());
        return server.waitFor(QStringLiteral("hello"), hellos + 1);
    }

    platform::ManualClock clock;
    ScriptedServer server;
    NetworkBackend *network = nullptr;
    std::unique_ptr<V2VORManager> client;
    std::unique_ptr<EventRecorder> recorder;
    ConversationRecorder conversations;
};

} // namespace

class TestNetworkBackend : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loginProvesTheUser_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("status");
        QTest::newRow("own token") << "alice" << 0 << int(V2VOR_STATUS_LOGINED);
        QTest::newRow("someone else's token") << "bob" << int(V2VOR_ERR_AUTH_FAILED) << int(V2VOR_STATUS_LOGOUT);
    }
    void loginProvesTheUser()
    {
        QFETCH(QString, token);
        Rig rig;
        QSignalSpy states(rig.client.get(), &V2VORManager::connectionStateChanged);
        const CallOutcome<> login = rig.login(QStringLiteral("alice"), token);
        QVERIFY(login.arrived());
        QTEST(login.code(), "code");
        QTEST(rig.client->getLoginStatus(), "status");
        const auto expected = login.code() ? V2VOR_CONNECTION_DISCONNECTED : V2VOR_CONNECTION_CONNECTED;
        QTRY_COMPARE(rig.client->connectionState(), expected);
        QCOMPARE(states.first().first().toInt(), int(V2VOR_CONNECTION_CONNECTING));
    }

    void repliesAreMatchedByID()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        rig.server.handlers.remove(QStringLiteral("usersInfo"));
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
        QVERIFY(conversations.value().isEmpty());
        QCOMPARE(users.code(), 0);
        QCOMPARE(users.value().size(), 1);
        QCOMPARE(users.value().first().nickName, QStringLiteral("Bob"));
    }

    void unreadableRepliesFailTheCall_data()
    {
        QTest::addColumn<QJsonObject>("result");
        QTest::newRow("no messages") << QJsonObject();
        QTest::newRow("messages not a list") << QJsonObject { { QStringLiteral("messages"), QStringLiteral("x") } };
        QTest::newRow("a message ill-typed") << QJsonObject { { QStringLiteral("messages"),
            QJsonArray { QJsonObject { { QStringLiteral("seq"), "one" } } } } };
    }
    void unreadableRepliesFailTheCall()
    {
        QFETCH(QJsonObject, result);
        Rig rig;
        QVERIFY(!rig.login().code());
        CallOutcome<QList<V2VORMessagePtr>> history;
        rig.client->getGroupHistoryMessageList(kGroup, 20, nullptr, history.succ(), history.fail());
        QVERIFY(rig.server.waitFor(QStringLiteral("history")));
        rig.server.reply(rig.server.requests(QStringLiteral("history")).first().id, result);
        QVERIFY(history.wait());
        QCOMPARE(history.code(), int(V2VOR_ERR_PROTOCOL_MALFORMED));
        // Frames that are no reply at all change nothing, and the connection goes on.
        rig.server.sendRaw("not json");
        rig.server.sendRaw(R"({"v":1,"re":9999,"code":0})");
        CallOutcome<> read;
        rig.client->markGroupMessageAsRead(kGroup, read.done(), read.fail());
        QVERIFY(rig.server.waitFor(QStringLiteral("markGroupRead")));
        rig.server.reply(rig.server.requests(QStringLiteral("markGroupRead")).first().id);
        QVERIFY(read.wait());
        QCOMPARE(read.code(), 0);
    }

    void eventsReachTheListeners()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        rig.server.event(QStringLiteral("newMessage"), { { QStringLiteral("message"), messageJson("m1", 1) } });
        rig.server.event(QStringLiteral("newMessage"), { { QStringLiteral("message"), 7 } });
        QJsonObject changed = extensions({ { "k", "v", 3 } });
        changed.insert(QStringLiteral("msgID"), QStringLiteral("m1"));
        rig.server.event(QStringLiteral("extensionsChanged"), changed);
        rig.server.event(QStringLiteral("extensionsDeleted"),
            { { QStringLiteral("msgID"), QStringLiteral("m1") }, { QStringLiteral("keys"), QJsonArray { "gone" } },
                { QStringLiteral("versions"), QJsonObject { { "gone", 2 } } } });
        rig.server.event(QStringLiteral("noSuchEvent"), {});
        QTRY_COMPARE(rig.recorder->deleted.size(), 1);
        QCOMPARE(rig.recorder->newMessages.size(), 1);
        QCOMPARE(rig.recorder->newMessages.first()->msgID(), QStringLiteral("m1"));
        QCOMPARE(rig.recorder->changed.size(), 1);
        QCOMPARE(rig.recorder->changed.first().second.first().extensionValue, QStringLiteral("v"));
        QCOMPARE(rig.recorder->deleted.first().second, QStringList { "gone" });
    }

    void callsInFlightGoOutAgainAfterADrop()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        V2VORMessagePtr message = rig.client->createTextMessage(QStringLiteral("hi"));
        CallOutcome<> sent;
        const QString msgID = rig.client->sendMessage(
            message, {}, kGroup, V2VOR_PRIORITY_DEFAULT, false, std::nullopt, nullptr, sent.done(), sent.fail());
        QVERIFY(msgID.startsWith(QStringLiteral("msg-")) && msgID.size() == 4 + 32);
        QVERIFY(rig.server.waitFor(QStringLiteral("sendMessage")));
        QVERIFY(rig.dropAndReconnect());
        QTRY_COMPARE(rig.client->connectionState(), V2VOR_CONNECTION_CONNECTED);
        QVERIFY(rig.server.waitFor(QStringLiteral("sendMessage"), 2));
        const QList<Request> sends = rig.server.requests(QStringLiteral("sendMessage"));
        const auto idOf = [](const Request &send) {
            return send.args.value(QStringLiteral("message")).toObject().value(QStringLiteral("msgID")).toString();
        };
        QCOMPARE(idOf(sends.at(0)), msgID);
        QCOMPARE(idOf(sends.at(1)), msgID);
        QVERIFY(!sent.arrived());
        rig.server.reply(sends.at(1).id, { { QStringLiteral("message"), messageJson(msgID, 4) } });
        QVERIFY(sent.wait());
        QCOMPARE(sent.code(), 0);
        QCOMPARE(message->seq(), quint64(4));
        QCOMPARE(rig.server.connections(), 2);
    }

    void aRetriedWriteThatLandedCountsAsDone_data()
    {
        QTest::addColumn<QString>("latest");
        QTest::addColumn<int>("code");
        QTest::newRow("our own value") << "mine" << 0;
        QTest::newRow("someone else's") << "theirs" << int(V2VOR_ERR_EXTENSION_VERSION_CONFLICT);
    }
    void aRetriedWriteThatLandedCountsAsDone()
    {
        QFETCH(QString, latest);
        Rig rig;
        QVERIFY(!rig.login().code());
        V2VORMessagePtr note = ServiceProtocol::messageFromJson(messageJson(QStringLiteral("m1"), 1, 1, true));
        CallOutcome<QList<V2VORMessageExtensionResult>> written;
        rig.client->setMessageExtensions(
            note, { { QStringLiteral("k"), QStringLiteral("mine") } }, written.succ(), written.fail());
        QVERIFY(rig.server.waitFor(QStringLiteral("setExtensions")));
        QVERIFY(rig.dropAndReconnect());
        QVERIFY(rig.server.waitFor(QStringLiteral("setExtensions"), 2));
        const QJsonObject conflict { { QStringLiteral("code"), V2VOR_ERR_EXTENSION_VERSION_CONFLICT },
            { QStringLiteral("info"), QStringLiteral("changed") }, { QStringLiteral("key"), QStringLiteral("k") },
            { QStringLiteral("value"), latest } };
        rig.server.reply(rig.server.requests(QStringLiteral("setExtensions")).at(1).id,
            { { QStringLiteral("results"), QJsonArray { conflict } },
                { QStringLiteral("versions"), QJsonObject { { QStringLiteral("k"), 1 } } } });
        QVERIFY(written.wait());
        QCOMPARE(written.value().size(), 1);
        QTEST(written.value().first().resultCode, "code");
        // Either way the client now knows the key's version: the next write presents it.
        rig.client->setMessageExtensions(note, { { QStringLiteral("k"), QStringLiteral("again") } }, nullptr, nullptr);
        QVERIFY(rig.server.waitFor(QStringLiteral("setExtensions"), 3));
        const QJsonObject seen
            = rig.server.requests(QStringLiteral("setExtensions")).at(2).args.value("seen").toObject();
        QCOMPARE(seen.value(QStringLiteral("k")).toInt(), 1);
    }

    void callsWaitForTheConnectionForAWhile()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        rig.server.stopListening();
        QSignalSpy retries(rig.network->connection(), &NetworkConnection::retryScheduled);
        rig.server.drop();
        QVERIFY(retries.wait(5000));
        CallOutcome<QList<V2VORConversation>> waiting;
        rig.client->getConversationList(waiting.succ(), waiting.fail());
        rig.clock.advance(29000);
        QCoreApplication::processEvents();
        QVERIFY(!waiting.arrived());
        QCOMPARE(rig.client->connectionState(), V2VOR_CONNECTION_CONNECTING);
        rig.clock.advance(1000);
        QVERIFY(waiting.wait());
        QCOMPARE(waiting.code(), int(V2VOR_ERR_SERVICE_UNAVAILABLE));
    }

    void loginWithoutAServerGivesUpInTime()
    {
        Rig rig;
        rig.server.stopListening();
        CallOutcome<> login;
        rig.client->setLoginToken(QStringLiteral("alice"));
        rig.client->login(QStringLiteral("alice"), login.done(), login.fail());
        QTRY_COMPARE(rig.client->connectionState(), V2VOR_CONNECTION_CONNECTING);
        rig.clock.advance(30000);
        QVERIFY(login.wait());
        QCOMPARE(login.code(), int(V2VOR_ERR_SERVICE_UNAVAILABLE));
        QTRY_COMPARE(rig.client->connectionState(), V2VOR_CONNECTION_DISCONNECTED);
    }

    void backoffDoublesUpToItsCap_data()
    {
        QTest::addColumn<int>("failures");
        QTest::addColumn<int>("longest");
        QTest::newRow("first") << 1 << 500;
        QTest::newRow("second") << 2 << 1000;
        QTest::newRow("fifth") << 5 << 8000;
        QTest::newRow("capped") << 7 << 30000;
        QTest::newRow("far out") << 1000 << 30000;
    }
    void backoffDoublesUpToItsCap()
    {
        QFETCH(int, failures);
        QFETCH(int, longest);
        QCOMPARE((NetworkConnection::Backoff { 500, 30000, 0 }.delayAfter(failures)), longest);
        const NetworkConnection::Backoff jittered { 500, 30000, 0.5 };
        for (int i = 0; i < 50; ++i) {
            const int delay = jittered.delayAfter(failures);
            QVERIFY(delay >= longest / 2 && delay <= longest);
        }
    }

    void retriesOfAnAbsentServerBackOff()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        rig.server.stopListening();
        QSignalSpy retries(rig.network->connection(), &NetworkConnection::retryScheduled);
        rig.server.drop();
        for (int attempt = 1; attempt <= 4; ++attempt) {
            QVERIFY(retries.wait(5000));
            rig.clock.advance(retries.last().first().toInt());
        }
        QVERIFY(retries.wait(5000));
        QList<int> delays;
        for (const QList<QVariant> &retry : std::as_const(retries))
            delays.append(retry.first().toInt());
        QCOMPARE(delays, (QList<int> { 500, 1000, 2000, 4000, 8000 }));
    }

    void catchUpDeliversExactlyWhatWasMissed()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        // The client holds m1 (with extensions k1, k2 live), m2 and m3.
        rig.server.handlers.insert(QStringLiteral("history"), [&](const Request &request) {
            rig.server.reply(
                request.id, page({ messageJson("m3", 3), messageJson("m2", 2), messageJson("m1", 1, 1, true) }));
        });
        rig.server.handlers.insert(QStringLiteral("getExtensions"), [&](const Request &request) {
            rig.server.reply(request.id, extensions({ { "k1", "a", 1 }, { "k2", "b", 1 } }));
        });
        CallOutcome<QList<V2VORMessagePtr>> held;
        rig.client->getGroupHistoryMessageList(kGroup, 20, nullptr, held.succ(), held.fail());
        QVERIFY(held.wait() && held.value().size() == 3);
        CallOutcome<QList<V2VORMessageExtension>> read;
        rig.client->getMessageExtensions(held.value().last(), read.succ(), read.fail());
        QVERIFY(read.wait() && read.code() == 0);
        // Offline: m4..m25 arrived, m2 was modified, k1 changed, k2 was deleted, k3 appeared.
        QList<QJsonObject> all;
        for (int seq = 25; seq >= 4; --seq)
            all.append(messageJson(QStringLiteral("m%1").arg(seq), seq));
        all += { messageJson("m3", 3), messageJson("m2", 2, 2), messageJson("m1", 1, 1, true) };
        rig.server.handlers.insert(QStringLiteral("history"), [&, all](const Request &request) {
            const quint64 before = request.args.value(QStringLiteral("beforeSeq")).toInteger();
            QList<QJsonObject> result;
            for (const QJsonObject &message : all) {
                const quint64 seq = message.value(QStringLiteral("seq")).toInteger();
                if ((before == 0 || seq < before) && result.size() < request.args.value("count").toInt())
                    result.append(message);
            }
            rig.server.reply(request.id, page(result));
        });
        rig.server.handlers.insert(QStringLiteral("getExtensions"), [&](const Request &request) {
            rig.server.reply(request.id, extensions({ { "k1", "a2", 2 }, { "k3", "c", 1 } }));
        });
        rig.server.handlers.insert(QStringLiteral("conversationList"), [&](const Request &request) {
            V2VORConversation group;
            group.conversationID = QStringLiteral("group_g1");
            group.groupID = kGroup;
            group.unreadCount = 22;
            rig.server.reply(
                request.id, { { QStringLiteral("conversations"), QJsonArray { ServiceProtocol::toJson(group) } } });
        });
        const int historyBefore = rig.server.requests(QStringLiteral("history")).size();
        QVERIFY(rig.dropAndReconnect());
        QTRY_COMPARE(rig.conversations.changed.size(), 1);
        QCOMPARE(rig.conversations.changed.first().unreadCount, 22);
        // Two pages reach back to the oldest message held.
        QCOMPARE(rig.server.requests(QStringLiteral("history")).size() - historyBefore, 2);
        QStringList delivered;
        for (const V2VORMessagePtr &message : std::as_const(rig.recorder->newMessages))
            delivered.append(message->msgID());
        QStringList missed;
        for (int seq = 4; seq <= 25; ++seq)
            missed.append(QStringLiteral("m%1").arg(seq));
        QCOMPARE(delivered, missed);
        QCOMPARE(rig.recorder->modified.size(), 1);
        QCOMPARE(rig.recorder->modified.first()->msgID(), QStringLiteral("m2"));
        QCOMPARE(rig.recorder->changed.size(), 1);
        QCOMPARE(rig.recorder->changed.first().second.size(), 2);
        QCOMPARE(rig.recorder->changed.first().second.first().extensionValue, QStringLiteral("a2"));
        QCOMPARE(rig.recorder->changed.first().second.last().extensionKey, QStringLiteral("k3"));
        QCOMPARE(rig.recorder->deleted.size(), 1);
        QCOMPARE(rig.recorder->deleted.first().second, QStringList { "k2" });

        // A second drop with nothing new delivers nothing again.
        rig.recorder->newMessages.clear();
        rig.recorder->modified.clear();
        rig.recorder->changed.clear();
        rig.recorder->deleted.clear();
        QVERIFY(rig.dropAndReconnect());
        QTRY_COMPARE(rig.conversations.changed.size(), 2);
        QVERIFY(rig.recorder->newMessages.isEmpty() && rig.recorder->modified.isEmpty());
        QVERIFY(rig.recorder->changed.isEmpty() && rig.recorder->deleted.isEmpty());
    }

    void catchUpSkipsOurOwnResentMessage()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        QList<QJsonObject> stored { messageJson("m1", 1) };
        rig.server.handlers.insert(
            QStringLiteral("history"), [&](const Request &request) { rig.server.reply(request.id, page(stored)); });
        CallOutcome<QList<V2VORMessagePtr>> held;
        rig.client->getGroupHistoryMessageList(kGroup, 20, nullptr, held.succ(), held.fail());
        QVERIFY(held.wait());
        QSignalSpy retries(rig.network->connection(), &NetworkConnection::retryScheduled);
        rig.server.drop();
        QVERIFY(retries.wait(5000));
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
        rig.server.handlers.insert(QStringLiteral("conversationList"), [&](const Request &request) {
            rig.server.reply(request.id, { { QStringLiteral("conversations"), QJsonArray() } });
        });
        rig.clock.advance(retries.last().first().toInt());
        QVERIFY(sent.wait());
        QCOMPARE(sent.code(), 0);
        QTRY_COMPARE(rig.server.requests(QStringLiteral("conversationList")).size(), 1);
        QCoreApplication::processEvents();
        QVERIFY(rig.recorder->newMessages.isEmpty());
    }

    void theFirstConnectionCatchesNothingUp()
    {
        Rig rig;
        QVERIFY(!rig.login().code());
        CallOutcome<QList<V2VORConversation>> list;
        rig.client->getConversationList(list.succ(), list.fail());
        QVERIFY(rig.server.waitFor(QStringLiteral("conversationList")));
        // hello, the user's own profile, and the list: nothing else.
        QCOMPARE(rig.server.requests().size(), 3);
    }
};

QTEST_MAIN(TestNetworkBackend)
#include "tst_networkbackend.moc"
