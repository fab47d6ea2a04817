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
