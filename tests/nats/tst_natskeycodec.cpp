// Any text survives the trip into the key alphabet and back, and only that alphabet is used.
#include "server/nats/NatsKeyCodec.h"

#include <QRegularExpression>
#include <QTest>

class TestNatsKeyCodec : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void roundTrips_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("dots") << QStringLiteral("a.b..c.");
        QTest::newRow("spaces") << QStringLiteral("  two words ");
        QTest::newRow("wildcards") << QStringLiteral("*.>");
        QTest::newRow("emoji") << QStringLiteral("note 📝 👍🏽");
        QTest::newRow("100 bytes") << QString(100, QLatin1Char('k'));
        QTest::newRow("cjk") << QStringLiteral("报名表");
        QTest::newRow("equals") << QStringLiteral("=");
    }
    void roundTrips()
    {
        QFETCH(QString, text);
        const QByteArray token = NatsKeyCodec::encode(text);
        QVERIFY(QRegularExpression(QStringLiteral("^[-_=A-Za-z0-9]+$")).match(QString::fromLatin1(token)).hasMatch());
        QCOMPARE(NatsKeyCodec::decode(token), std::optional<QString>(text));
    }
    void distinctTextsGiveDistinctTokens()
    {
        QVERIFY(NatsKeyCodec::encode(QStringLiteral("=")) != NatsKeyCodec::encode(QString()));
        QVERIFY(NatsKeyCodec::encode(QStringLiteral("a")) != NatsKeyCodec::encode(QStringLiteral("a ")));
    }
    void rejectsForeignTokens_data()
    {
        QTest::addColumn<QByteArray>("token");
        QTest::newRow("none") << QByteArray();
        QTest::newRow("dot") << QByteArray("YQ.");
        QTest::newRow("padded") << QByteArray("YQ==");
        QTest::newRow("dangling") << QByteArray("Y");
    }
    void rejectsForeignTokens()
    {
        QFETCH(QByteArray, token);
        QCOMPARE(NatsKeyCodec::decode(token), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(TestNatsKeyCodec)
#include "tst_natskeycodec.moc"
