// A real server on loopback in front of the in-process service, spoken to by raw WebSocket
// clients: who gets in, what members and strangers may do, how bad frames and floods are met,
// and where events go.
#include "WireClient.h"

#include "platform/ManualClock.h"
#include "sdk/LocalBackend.h"
#include "sdk/MessagingServer.h"
#include "server/VorServer.h"

#include <QTest>

namespace {

const QByteArray kSecret = "test secret";

QJsonObject json(const char *text)
{
    return QJsonDocument::fromJson(text).object();
}

} // namespace

class TestVorServer : public QObject
{
    Q_OBJECT

private:
    platform::ManualClock *m_clock = nullptr;
    MessagingServer *m_service = nullptr;
    LocalBackend *m_backend = nullptr;
    VorServer *m_server = nullptr;

    qint64 inAnHour() const { return qint64(m_clock->now() / 1000) + 3600; }

    void startServer(const RateLimiter::Limits &limits = {})
    {
        ServerOptions options;
        options.secret = kSecret;
        options.limits = limits;
        m_server = new VorServer(options, m_backend);
        QString error;
        QVERIFY2(m_server->listen(&error), qPrintable(error));
        QVERIFY(m_server->port() != 0);
    }

    /// A client that said hello as `userID`; null (with a failed check) when it could not.
    std::unique_ptr<WireClient> connectAs(const QString &userID, bool isOperator = false)
    {
        auto client = std::make_unique<WireClient>();
        if (!client->open(m_server->url()))
            return nullptr;
        const QString token = m_server->authority().mint(userID, inAnHour(), isOperator);
        if (client->call(QStringLiteral("hello"), { { QStringLiteral("token"), token } }) != 0)
            return nullptr;
        return client;
    }

    QJsonObject sendNote(WireClient &client, const QString &msgID, const QString &groupID = QStringLiteral("g1"))
    {
        const QJsonObject message { { QStringLiteral("msgID"), msgID }, { QStringLiteral("text"), msgID },
            { QStringLiteral("elemType"), 1 }, { QStringLiteral("supportExtension"), true } };
        return client.reply(client.send(QStringLiteral("sendMessage"),
            { { QStringLiteral("message"), message }, { QStringLiteral("groupID"), groupID } }));
    }

private Q_SLOTS:
    void init()
    {
        m_clock = new platform::ManualClock;
        m_service = new MessagingServer;
        m_service->addUser(QStringLiteral("amy"), QStringLiteral("Amy"));
        m_service->addUser(QStringLiteral("ben"), QStringLiteral("Ben"));
        m_service->addUser(QStringLiteral("carol"), QStringLiteral("Carol"));
        m_service->createGroup(QStringLiteral("g1"), { QStringLiteral("amy"), QStringLiteral("ben") });
        m_backend = new LocalBackend(m_service);
        startServer();
    }

    void cleanup()
    {
        delete m_server;
        delete m_backend;
        delete m_service;
        delete m_clock;
    }

    void helloRefusesBadTokensAndLetsTheConnectionTryAgain_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("missing") << "missing";
        QTest::newRow("empty") << "empty";
        QTest::newRow("forged") << "forged";
        QTest::newRow("expired") << "expired";
        QTest::newRow("garbage") << "garbage";
    }

    void helloRefusesBadTokensAndLetsTheConnectionTryAgain()
    {
        QFETCH(QString, kind);
        const qint64 now = qint64(m_clock->now() / 1000);
        QJsonObject args;
        if (kind == QLatin1String("empty"))
            args.insert(QStringLiteral("token"), QString());
        else if (kind == QLatin1String("forged"))
            args.insert(QStringLiteral("token"), TokenAuthority("guess").mint(QStringLiteral("amy"), now + 60, true));
        else if (kind == QLatin1String("expired"))
            args.insert(QStringLiteral("token"), m_server->authority().mint(QStringLiteral("amy"), now, false));
        else if (kind == QLatin1String("garbage"))
            args.insert(QStringLiteral("token"), QStringLiteral("a.b.c"));

        WireClient client;
        QVERIFY(client.open(m_server->url()));
        QCOMPARE(client.call(QStringLiteral("hello"), args), 9506);
        QCOMPARE(client.call(QStringLiteral("ping")), 9506);
        const QJsonObject hello = client.reply(client.send(QStringLiteral("hello"),
            { { QStringLiteral("token"), m_server->authority().mint(QStringLiteral("amy"), now + 60, false) } }));
        QCOMPARE(WireClient::code(hello), 0);
        const QJsonObject result = hello.value(QLatin1String("result")).toObject();
        QCOMPARE(result.value(QLatin1String("userID")).toString(), QStringLiteral("amy"));
        QCOMPARE(result.value(QLatin1String("operator")).toBool(true), false);
        QCOMPARE(result.value(QLatin1String("protocol")).toInt(), 1);
        QCOMPARE(client.call(QStringLiteral("ping")), 0);
        QCOMPARE(client.call(QStringLiteral("hello"), args), 9501);
    }

    void requestsBeforeHelloAreRefused()
    {
        WireClient client;
        QVERIFY(client.open(m_server->url()));
        QCOMPARE(client.call(QStringLiteral("history"), json(R"({"groupID":"g1","count":10})")), 9506);
        QCOMPARE(client.call(QStringLiteral("addUser"), json(R"({"userID":"eve"})")), 9506);
        QVERIFY(!m_service->hasUser(QStringLiteral("eve")));
    }

    void strangersReadAndWriteNothingMembersDo_data()
    {
        QTest::addColumn<QString>("op");
        QTest::addColumn<QByteArray>("args");
        QTest::newRow("history") << "history" << QByteArray(R"({"groupID":"g1","count":10})");
        QTest::newRow("messageAt") << "messageAt" << QByteArray(R"({"groupID":"g1","seq":1})");
        QTest::newRow("getExtensions") << "getExtensions" << QByteArray(R"({"msgID":"note-1"})");
        QTest::newRow("setExtensions") << "setExtensions"
                                       << QByteArray(R"({"msgID":"note-1","extensions":[{"key":"1","value":"x"}]})");
        QTest::newRow("deleteExtensions") << "deleteExtensions" << QByteArray(R"({"msgID":"note-1","keys":["1"]})");
        QTest::newRow("sendMessage") << "sendMessage" << QByteArray(R"({"message":{"text":"hi"},"groupID":"g1"})");
    }

    void strangersReadAndWriteNothingMembersDo()
    {
        QFETCH(QString, op);
        QFETCH(QByteArray, args);
        const auto amy = connectAs(QStringLiteral("amy"));
        const auto ben = connectAs(QStringLiteral("ben"));
        const auto carol = connectAs(QStringLiteral("carol"));
        QVERIFY(amy && ben && carol);
        QCOMPARE(WireClient::code(sendNote(*amy, QStringLiteral("note-1"))), 0);
        const int messagesBefore = int(m_service->groupMessages(QStringLiteral("g1")).size());

        const QJsonObject refused = carol->reply(carol->send(op, json(args)));
        QCOMPARE(WireClient::code(refused), int(V2VOR_ERR_NOT_GROUP_MEMBER));
        QVERIFY(!refused.contains(QLatin1String("result"))
            || refused.value(QLatin1String("result")).toObject().value(QLatin1String("messages")).toArray().isEmpty());
        QVERIFY(m_service->extensionsOf(QStringLiteral("note-1")).isEmpty());
        QCOMPARE(m_service->groupMessages(QStringLiteral("g1")).size(), messagesBefore);

        QCOMPARE(ben->call(op, json(args)), 0);
    }

    void badFramesAreAnsweredAndTheConnectionLives_data()
    {
        QTest::addColumn<QByteArray>("frame");
        QTest::addColumn<bool>("binary");
        QTest::addColumn<int>("code");
        QTest::addColumn<QJsonValue>("re");

        const QJsonValue none(QJsonValue::Null);
        QTest::newRow("not JSON") << QByteArray("{\"v\":1,") << false << 9501 << none;
        QTest::newRow("an array") << QByteArray("[1,2]") << false << 9501 << none;
        QTest::newRow("empty text") << QByteArray() << false << 9501 << none;
        QTest::newRow("binary") << QByteArray(R"({"v":1,"id":5,"op":"ping"})") << true << 9501 << none;
        QTest::newRow("no version") << QByteArray(R"({"id":5,"op":"ping"})") << false << 9501 << QJsonValue(5);
        QTest::newRow("version 2") << QByteArray(R"({"v":2,"id":5,"op":"ping"})") << false << 9503 << QJsonValue(5);
        QTest::newRow("no id") << QByteArray(R"({"v":1,"op":"ping"})") << false << 9501 << none;
        QTest::newRow("op a number") << QByteArray(R"({"v":1,"id":5,"op":3})") << false << 9501 << QJsonValue(5);
        QTest::newRow("args an array") << QByteArray(R"({"v":1,"id":5,"op":"ping","args":[]})") << false << 9501
                                       << QJsonValue(5);
        QTest::newRow("unknown op") << QByteArray(R"({"v":1,"id":5,"op":"shutdown"})") << false << 9504
                                    << QJsonValue(5);
        QTest::newRow("count a string") << QByteArray(
            R"({"v":1,"id":5,"op":"history","args":{"groupID":"g1","count":"9"}})")
                                        << false << 9501 << QJsonValue(5);
        QTest::newRow("message ill-typed")
            << QByteArray(R"({"v":1,"id":5,"op":"sendMessage","args":{"message":{"data":"***"},"groupID":"g1"}})")
            << false << 9501 << QJsonValue(5);
        const QByteArray padding(ServiceProtocol::kMaxFrameBytes, 'x');
        QTest::newRow("over 64 KiB") << QByteArray("{\"v\":1,\"id\":5,\"op\":\"ping\",\"args\":{\"pad\":\"") + padding
                + "\"}}" << false << 9502
                                     << none;
    }

    void badFramesAreAnsweredAndTheConnectionLives()
    {
        QFETCH(QByteArray, frame);
        QFETCH(bool, binary);
        QFETCH(int, code);
        QFETCH(QJsonValue, re);
        const auto amy = connectAs(QStringLiteral("amy"));
        QVERIFY(amy);
        if (binary)
            amy->socket.sendBinaryMessage(frame);
        else
            amy->sendRaw(frame);
        const int index = amy->waitReply(re);
        QVERIFY(index >= 0);
        QCOMPARE(WireClient::code(amy->frames[index]), code);
        QVERIFY(!amy->frames[index].value(QLatin1String("desc")).toString().isEmpty());
        QCOMPARE(amy->call(QStringLiteral("ping")), 0);
        QCOMPARE(amy->socket.state(), QAbstractSocket::ConnectedState);
    }

    void aFrameFarTooLargeClosesOnlyItsConnection()
    {
        const auto amy = connectAs(QStringLiteral("amy"));
        const auto ben = connectAs(QStringLiteral("ben"));
        QVERIFY(amy && ben);
        QSignalSpy closed(&amy->socket, &QWebSocket::disconnected);
        amy->sendRaw(QByteArray(4 * ServiceProtocol::kMaxFrameBytes, ' '));
        QVERIFY(closed.wait(5000));
        QCOMPARE(amy->socket.closeCode(), QWebSocketProtocol::CloseCodeTooMuchData);
        QCOMPARE(ben->call(QStringLiteral("ping")), 0);
    }

    void floodingIsRefusedThenClosed()
    {
        delete m_server;
        startServer({ 1, 3, 2 }); // the clock stands still: nothing refills
        const auto amy = connectAs(QStringLiteral("amy")); // the first request
        QVERIFY(amy);
        QCOMPARE(amy->call(QStringLiteral("ping")), 0);
        QCOMPARE(amy->call(QStringLiteral("ping")), 0);
        QCOMPARE(amy->call(QStringLiteral("ping")), 9505);
        QCOMPARE(amy->call(QStringLiteral("ping")), 9505);
        m_clock->advance(1000);
        QCOMPARE(amy->call(QStringLiteral("ping")), 0);
        QCOMPARE(amy->call(QStringLiteral("ping")), 9505);
        QCOMPARE(amy->call(QStringLiteral("ping")), 9505);
        QSignalSpy closed(&amy->socket, &QWebSocket::disconnected);
        amy->send(QStringLiteral("ping"));
        QVERIFY(closed.wait(5000));
        QCOMPARE(amy->socket.closeCode(), QWebSocketProtocol::CloseCodePolicyViolated);
    }

    void aConnectionThatNeverSaysHelloIsClosed()
    {
        WireClient silent;
        QVERIFY(silent.open(m_server->url()));
        const auto amy = connectAs(QStringLiteral("amy"));
        QVERIFY(amy);
        QTRY_COMPARE(m_server->connectionCount(), 2);
        QSignalSpy closed(&silent.socket, &QWebSocket::disconnected);
        m_clock->advance(9999);
        QCOMPARE(silent.call(QStringLiteral("ping")), 9506);
        m_clock->advance(1);
        QVERIFY(closed.wait(5000));
        QCOMPARE(silent.socket.closeCode(), QWebSocketProtocol::CloseCodePolicyViolated);
        QCOMPARE(amy->call(QStringLiteral("ping")), 0);
        QTRY_COMPARE(m_server->connectionCount(), 1);
    }

    void eventsReachMembersAndPrecedeTheCallersReply()
    {
        const auto amy = connectAs(QStringLiteral("amy"));
        const auto ben = connectAs(QStringLiteral("ben"));
        const auto carol = connectAs(QStringLiteral("carol"));
        QVERIFY(amy && ben && carol);
        const qint64 send = amy->send(QStringLiteral("sendMessage"),
            json(R"({"message":{"msgID":"note-1","text":"sign up","supportExtension":true},"groupID":"g1"})"));
        const int sendReply = amy->waitReply(send);
        QVERIFY(sendReply >= 0);
        const int ownEvent = amy->eventIndex(QStringLiteral("conversationChanged"));
        QVERIFY(ownEvent >= 0 && ownEvent < sendReply);
        QCOMPARE(amy->eventIndex(QStringLiteral("newMessage")), -1);
        QTRY_VERIFY(ben->eventIndex(QStringLiteral("newMessage")) >= 0);
        const QJsonObject heard = ben->frames[ben->eventIndex(QStringLiteral("newMessage"))];
        const QJsonObject message
            = heard.value(QLatin1String("data")).toObject().value(QLatin1String("message")).toObject();
        QCOMPARE(message.value(QLatin1String("text")).toString(), QStringLiteral("sign up"));
        QCOMPARE(message.value(QLatin1String("isSelf")).toBool(true), false);

        const qint64 write = amy->send(
            QStringLiteral("setExtensions"), json(R"({"msgID":"note-1","extensions":[{"key":"1","value":"tea"}]})"));
        const int writeReply = amy->waitReply(write);
        const int changed = amy->eventIndex(QStringLiteral("extensionsChanged"));
        QVERIFY(changed > sendReply && changed < writeReply);
        QTRY_VERIFY(ben->eventIndex(QStringLiteral("extensionsChanged")) >= 0);
        const QJsonObject data
            = ben->frames[ben->eventIndex(QStringLiteral("extensionsChanged"))].value(QLatin1String("data")).toObject();
        QCOMPARE(data.value(QLatin1String("msgID")).toString(), QStringLiteral("note-1"));
        QCOMPARE(data.value(QLatin1String("versions")).toObject().value(QLatin1String("1")).toInt(), 1);

        QCOMPARE(carol->call(QStringLiteral("ping")), 0);
        QCOMPARE(carol->eventIndex(QStringLiteral("newMessage")), -1);
        QCOMPARE(carol->eventIndex(QStringLiteral("extensionsChanged")), -1);
    }

    void theDirectoryIsKeptByOperators()
    {
        const auto amy = connectAs(QStringLiteral("amy"));
        const auto root = connectAs(QStringLiteral("root"), true);
        QVERIFY(amy && root);
        QCOMPARE(amy->call(QStringLiteral("addUser"), json(R"({"userID":"eve","nickName":"Eve"})")), 9507);
        QCOMPARE(amy->call(QStringLiteral("addGroupMember"), json(R"({"groupID":"g1","userID":"carol"})")), 9507);
        QVERIFY(!m_service->hasUser(QStringLiteral("eve")));
        QVERIFY(!m_service->isGroupMember(QStringLiteral("g1"), QStringLiteral("carol")));

        QCOMPARE(root->call(QStringLiteral("addUser"), json(R"({"userID":"eve","nickName":"Eve"})")), 0);
        QCOMPARE(root->call(QStringLiteral("createGroup"), json(R"({"groupID":"g2","memberIDs":["amy","eve"]})")), 0);
        QCOMPARE(root->call(QStringLiteral("setGroupInfo"), json(R"({"groupID":"g2"})")), 9501);
        QVERIFY(m_service->hasUser(QStringLiteral("eve")));
        QVERIFY(m_service->isGroupMember(QStringLiteral("g2"), QStringLiteral("eve")));
        QCOMPARE(WireClient::code(sendNote(*amy, QStringLiteral("note-2"), QStringLiteral("g2"))), 0);
    }
};

QTEST_GUILESS_MAIN(TestVorServer)
#include "tst_vorserver.moc"
