// The demo's command line: which runs it accepts and how it refuses the others.
#include "DemoOptions.h"

#include <QTest>

class tst_DemoOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data();
    void parse();
    void wantsScreenshots_data();
    void wantsScreenshots();
    void serverToken();
};

void tst_DemoOptions::parse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("tourDir");

    QTest::newRow("plain") << QStringList {} << true << 0 << QString();
    QTest::newRow("tour") << QStringList { "--tour", "out" } << true << 0 << "out";
    QTest::newRow("tour as another user") << QStringList { "--user", "ben", "--tour=out" } << true << 0 << "out";
    QTest::newRow("tour with screenshots") << QStringList { "--tour", "a", "--screenshot", "b" } << false << 2 << "";
    QTest::newRow("tour without members") << QStringList { "--seed", "off", "--tour", "out" } << false << 2 << "";
    QTest::newRow("screenshots without members")
        << QStringList { "--seed", "off", "--screenshot", "b" } << true << 0 << QString();
    QTest::newRow("tour without a directory") << QStringList { "--tour" } << false << 2 << "";
    QTest::newRow("server, any user")
        << QStringList { "--server", "ws://127.0.0.1:8080", "--user", "zed" } << true << 0 << QString();
    QTest::newRow("server not a WebSocket") << QStringList { "--server", "http://127.0.0.1:8080" } << false << 2 << "";
    QTest::newRow("server without a host") << QStringList { "--server", "ws://" } << false << 2 << "";
    QTest::newRow("server with pictures")
        << QStringList { "--server", "ws://127.0.0.1:8080", "--screenshot", "b" } << false << 2 << "";
    QTest::newRow("unknown user without a server") << QStringList { "--user", "zed" } << false << 2 << "";
}

void tst_DemoOptions::parse()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, accepted);
    QFETCH(int, exitCode);
    QFETCH(QString, tourDir);

    int code = -1;
    const std::optional<DemoOptions> options
        = DemoOptions::parse(QStringList { QStringLiteral("group-notes-demo") } + arguments, code);
    QCOMPARE(options.has_value(), accepted);
    QCOMPARE(code, exitCode);
    if (options)
        QCOMPARE(options->tourDir, tourDir);
}

void tst_DemoOptions::serverToken()
{
    qputenv("VOR_TOKEN", "from-env");
    const QStringList server { "group-notes-demo", "--server", "ws://127.0.0.1:9/", "--user", "zed" };
    int code = -1;
    const std::optional<DemoOptions> fromEnvironment = DemoOptions::parse(server, code);
    QVERIFY(fromEnvironment);
    QCOMPARE(fromEnvironment->token, QStringLiteral("from-env"));
    QCOMPARE(fromEnvironment->server.port(), 9);
    const std::optional<DemoOptions> given = DemoOptions::parse(server + QStringList { "--token", "given" }, code);
    QVERIFY(given);
    QCOMPARE(given->token, QStringLiteral("given"));
    qunsetenv("VOR_TOKEN");
}

void tst_DemoOptions::wantsScreenshots_data()
{
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<bool>("wanted");

    QTest::newRow("interactive") << QByteArrayList { "--theme", "dark" } << false;
    QTest::newRow("screenshots") << QByteArrayList { "--screenshot", "d" } << true;
    QTest::newRow("tour") << QByteArrayList { "--tour", "d" } << true;
    QTest::newRow("tour joined") << QByteArrayList { "--tour=d" } << true;
    QTest::newRow("other options only") << QByteArrayList { "--user", "amy" } << false;
}

void tst_DemoOptions::wantsScreenshots()
{
    QFETCH(QByteArrayList, arguments);
    QFETCH(bool, wanted);

    arguments.prepend("group-notes-demo");
    std::vector<char *> argv;
    for (QByteArray &argument : arguments)
        argv.push_back(argument.data());
    QCOMPARE(DemoOptions::wantsScreenshots(int(argv.size()), argv.data()), wanted);
}

QTEST_GUILESS_MAIN(tst_DemoOptions)
#include "tst_DemoOptions.moc"
