// Reading the arguments of requests: which are refused, and that what is read is what was sent.
#include "server/RequestArgs.h"

#include <QJsonDocument>
#include <QTest>

namespace {

QJsonObject json(const char *text)
{
    return QJsonDocument::fromJson(text).object();
}

} // namespace

class TestRequestArgs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusals_data()
    {
        QTest::addColumn<QString>("op");
        QTest::addColumn<QByteArray>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("named");

        QTest::newRow("unknown op") << "dropTables" << QByteArray("{}") << 9504 << "dropTables";
        QTest::newRow("op names are exact") << "History" << QByteArray("{}") << 9504 << "History";
        QTest::newRow("history without group") << "history" << QByteArray(R"({"count":5})") << 9501 << "groupID";
        QTest::newRow("history count a string")
            << "history" << QByteArray(R"({"groupID":"g","count":"5"})") << 9501 << "count";
        QTest::newRow("history count negative")
            << "history" << QByteArray(R"({"groupID":"g","count":-1})") << 9501 << "count";
        QTest::newRow("history count fractional")
            << "history" << QByteArray(R"({"groupID":"g","count":1.5})") << 9501 << "count";
        QTest::newRow("history count beyond int")
            << "history" << QByteArray(R"({"groupID":"g","count":4294967296})") << 9501 << "count";
        QTest::newRow("beforeSeq null") << "directHistory" << QByteArray(R"({"peerID":"p","count":5,"beforeSeq":null})")
                                        << 9501 << "beforeSeq";
        QTest::newRow("group a number") << "markGroupRead" << QByteArray(R"({"groupID":7})") << 9501 << "groupID";
        QTest::newRow("message missing") << "sendMessage" << QByteArray(R"({"groupID":"g"})") << 9501 << "message";
        QTest::newRow("message a string") << "modifyMessage" << QByteArray(R"({"message":"hi"})") << 9501 << "message";
        QTest::newRow("message with ill-typed seq")
            << "modifyMessage" << QByteArray(R"({"message":{"seq":"1"}})") << 9501 << "message";
        QTest::newRow("priority a bool") << "sendMessage"
                                         << QByteArray(R"({"message":{},"groupID":"g","priority":true})") << 9501
                                         << "priority";
        QTest::newRow("push info an array")
            << "sendMessage" << QByteArray(R"({"message":{},"groupID":"g","offlinePushInfo":[]})") << 9501
            << "offlinePushInfo";
        QTest::newRow("push title a number")
            << "sendMessage" << QByteArray(R"({"message":{},"groupID":"g","offlinePushInfo":{"title":1}})") << 9501
            << "title";
        QTest::newRow("extensions without value")
            << "setExtensions" << QByteArray(R"({"msgID":"m","extensions":[{"key":"k"}]})") << 9501 << "extensions";
        QTest::newRow("seen versions as strings")
            << "setExtensions" << QByteArray(R"({"msgID":"m","extensions":[],"seen":{"k":"1"}})") << 9501 << "seen";
        QTest::newRow("keys with a number")
            << "deleteExtensions" << QByteArray(R"({"msgID":"m","keys":["a",1]})") << 9501 << "keys";
        QTest::newRow("user IDs an object") << "usersInfo" << QByteArray(R"({"userIDs":{}})") << 9501 << "userIDs";
        QTest::newRow("first fault named") << "setNameCard" << QByteArray(R"({"userID":1})") << 9501 << "groupID";
        QTest::newRow("hello token a number") << "hello" << QByteArray(R"({"token":1})") << 9501 << "token";
    }

    void refusals()
    {
        QFETCH(QString, op);
        QFETCH(QByteArray, args);
        QFETCH(int, code);
        QFETCH(QString, named);
        const RequestArgs::Parsed parsed = RequestArgs::parseArgs(op, json(args));
        QVERIFY(!parsed.args);
        QCOMPARE(parsed.error.code, code);
        QVERIFY2(
            parsed.error.desc.contains(QLatin1Char('"') + named + QLatin1Char('"')), qPrintable(parsed.error.desc));
    }

    void sendMessageReadsEveryMember()
    {
        const RequestArgs::Parsed parsed = RequestArgs::parseArgs(QStringLiteral("sendMessage"),
            json(R"({"message":{"msgID":"m1","text":"hi","supportExtension":true},"groupID":"g","priority":2,
                     "onlineUserOnly":true,"offlinePushInfo":{"title":"T","disablePush":true}})"));
        QVERIFY2(parsed.args, qPrintable(parsed.error.desc));
        const auto &send = std::get<RequestArgs::SendMessage>(*parsed.args);
        QCOMPARE(send.message->msgID(), QStringLiteral("m1"));
        QCOMPARE(send.message->text(), QStringLiteral("hi"));
        QVERIFY(send.message->supportMessageExtension());
        QCOMPARE(send.groupID, QStringLiteral("g"));
        QCOMPARE(send.priority, 2);
        QVERIFY(send.onlineUserOnly);
        QVERIFY(send.offlinePushInfo);
        QCOMPARE(send.offlinePushInfo->title, QStringLiteral("T"));
        QVERIFY(send.offlinePushInfo->disablePush);
    }

    void optionalMembersTakeDefaults()
    {
        const RequestArgs::Parsed history
            = RequestArgs::parseArgs(QStringLiteral("history"), json(R"({"groupID":"g","count":20})"));
        QVERIFY(history.args);
        QCOMPARE(std::get<RequestArgs::History>(*history.args).beforeSeq, 0u);
        const RequestArgs::Parsed set = RequestArgs::parseArgs(QStringLiteral("setExtensions"),
            json(R"({"msgID":"m","extensions":[{"key":"1","value":"a"}],"seen":{"1":3}})"));
        QVERIFY(set.args);
        const auto &extensions = std::get<RequestArgs::SetExtensions>(*set.args);
        QCOMPARE(extensions.extensions.size(), 1);
        QCOMPARE(extensions.seen.value(QStringLiteral("1")), 3u);
        const RequestArgs::Parsed hello = RequestArgs::parseArgs(QStringLiteral("hello"), {});
        QVERIFY(hello.args);
        QVERIFY(std::get<RequestArgs::Hello>(*hello.args).token.isEmpty());
    }

    void directoryOpsAreTheOperatorsOnly()
    {
        QStringList directory;
        for (const QString &op : RequestArgs::operations()) {
            if (RequestArgs::isDirectoryOp(op))
                directory.append(op);
        }
        QCOMPARE(directory,
            QStringList(
                { "addUser", "createGroup", "setGroupInfo", "addGroupMember", "setNameCard", "setFriendRemark" }));
        QCOMPARE(RequestArgs::operations().size(), 22);
        QVERIFY(!RequestArgs::isDirectoryOp(QStringLiteral("nosuchop")));
    }
};

QTEST_GUILESS_MAIN(TestRequestArgs)
#include "tst_requestargs.moc"
