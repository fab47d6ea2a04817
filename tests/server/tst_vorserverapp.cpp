// The vor-server program as its users run it: its first line, its flags, minted tokens, seeding,
// and a clean stop on SIGTERM.
#include "WireClient.h"

#include "server/TokenAuthority.h"

#include <QDateTime>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class TestVorServerApp : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    QString writeFile(const QString &name, const QByteArray &content)
    {
        QFile file(m_dir.filePath(name));
        if (!file.open(QIODevice::WriteOnly))
            return {};
        file.write(content);
        return file.fileName();
    }

    /// Runs the program to its end; answers its exit code, stdout and stderr.
    static std::tuple<int, QByteArray, QByteArray> run(const QStringList &arguments, const QByteArray &secret = {})
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("VOR_SECRET"));
        if (!secret.isEmpty())
            environment.insert(QStringLiteral("VOR_SECRET"), QString::fromLatin1(secret));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(VOR_SERVER_PATH), arguments);
        if (!process.waitForFinished(10000)) {
            process.kill();
            process.waitForFinished();
            return { -1, {}, {} };
        }
        return { process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError() };
    }

private Q_SLOTS:
    void refusesToStart_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("secret");
        QTest::addColumn<QString>("why");
        QTest::newRow("no secret") << QStringList() << QByteArray() << "no secret";
        QTest::newRow("empty secret file")
            << QStringList({ "--secret-file", "EMPTY" }) << QByteArray("s") << "no secret";
        QTest::newRow("unreadable secret file")
            << QStringList({ "--secret-file", "/nonexistent/secret" }) << QByteArray("s") << "cannot read";
        QTest::newRow("port out of range") << QStringList({ "--port", "70000" }) << QByteArray("s") << "--port";
        QTest::newRow("listen not an address")
            << QStringList({ "--listen", "localhost" }) << QByteArray("s") << "--listen";
        QTest::newRow("zero burst") << QStringList({ "--burst", "0" }) << QByteArray("s") << "--burst";
        QTest::newRow("unknown store") << QStringList({ "--store", "paper" }) << QByteArray("s") << "unknown store";
        QTest::newRow("nats") << QStringList({ "--store", "nats" }) << QByteArray("s") << "cannot reach NATS";
        QTest::newRow("bad directory") << QStringList({ "--directory", "BADDIR" }) << QByteArray("s")
                                       << "users[0] needs a \"userID\"";
        QTest::newRow("unknown flag") << QStringList({ "--colour" }) << QByteArray("s") << "colour";
    }

    void refusesToStart()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, secret);
        QFETCH(QString, why);
        arguments.replaceInStrings(QStringLiteral("EMPTY"), writeFile(QStringLiteral("empty"), "\n"));
        arguments.replaceInStrings(
            QStringLiteral("BADDIR"), writeFile(QStringLiteral("bad.json"), R"({"users": [{"nickName": "x"}]})"));
        const auto [code, out, err] = run(arguments, secret);
        QVERIFY(code != 0);
        QVERIFY(out.isEmpty());
        QVERIFY2(err.contains(why.toUtf8()), err.constData());
    }

    void mintsTokensTheServerAccepts()
    {
        const auto [code, out, err] = run({ "--mint-token", "amy", "--operator", "--ttl", "60" }, "s3cret");
        QCOMPARE(code, 0);
        const QString token = QString::fromLatin1(out.trimmed());
        const qint64 now = QDateTime::currentSecsSinceEpoch();
        const TokenAuthority::Verdict verdict = TokenAuthority("s3cret").verify(token, now * 1000.0);
        QVERIFY(verdict.ok());
        QCOMPARE(verdict.userID, QStringLiteral("amy"));
        QVERIFY(verdict.isOperator);
        QCOMPARE(TokenAuthority("s3cret").verify(token, (now + 61) * 1000.0).failure, TokenAuthority::Failure::Expired);
        QCOMPARE(TokenAuthority("other").verify(token, now * 1000.0).failure, TokenAuthority::Failure::Forged);
    }

    void servesTheSeededDirectoryAndStopsOnTerm()
    {
        const QString secretFile = writeFile(QStringLiteral("secret"), "file secret\n");
        const QString directory = writeFile(QStringLiteral("world.json"),
            R"({"users": [{"userID": "amy"}, {"userID": "ben"}],
                "groups": [{"groupID": "family", "groupName": "Family", "members": ["amy", "ben"]},
                           {"groupID": "cousins", "members": ["amy"]}]})");
        QProcess server;
        server.start(
            QStringLiteral(VOR_SERVER_PATH), { "--secret-file", secretFile, "--port", "0", "--directory", directory });
        QVERIFY(server.waitForReadyRead(10000));
        const QString first = QString::fromUtf8(server.readLine()).trimmed();
        const QRegularExpressionMatch match
            = QRegularExpression(QStringLiteral("^listening (ws://127\\.0\\.0\\.1:\\d+)$")).match(first);
        QVERIFY2(match.hasMatch(), qPrintable(first));

        // The trailing newline of the secret file is not part of the secret.
        const auto [code, token, err] = run({ "--mint-token", "ben" }, "file secret");
        QCOMPARE(code, 0);
        WireClient ben;
        QVERIFY(ben.open(match.captured(1)));
        QCOMPARE(
            ben.call(QStringLiteral("hello"), { { QStringLiteral("token"), QString::fromLatin1(token.trimmed()) } }),
            0);
        QCOMPARE(ben.call(QStringLiteral("history"),
                     { { QStringLiteral("groupID"), QStringLiteral("family") }, { QStringLiteral("count"), 10 } }),
            0);
        QCOMPARE(ben.call(QStringLiteral("history"),
                     { { QStringLiteral("groupID"), QStringLiteral("cousins") }, { QStringLiteral("count"), 10 } }),
            int(V2VOR_ERR_NOT_GROUP_MEMBER));

        QSignalSpy closed(&ben.socket, &QWebSocket::disconnected);
        server.terminate();
        QVERIFY(server.waitForFinished(10000));
        QCOMPARE(server.exitStatus(), QProcess::NormalExit);
        QCOMPARE(server.exitCode(), 0);
        QVERIFY(closed.count() == 1 || closed.wait(5000));
    }
};

QTEST_GUILESS_MAIN(TestVorServerApp)
#include "tst_vorserverapp.moc"
