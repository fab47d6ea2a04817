// Any text survives the trip into the key alphabet and back, and only that alphabet is used.
#include "server/nats/NatsKeyCodec.h"

#include <QRegularExpression>
#include <QTest>

class TestNatsKeyCodec : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // Round trips also keep texts apart: "=" and the empty text must not share a token.
    void roundTrips_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("equals") << QStringLiteral("=");
        QTest::newRow("dots and wildcards") << QStringLiteral(" *.b..> ");
        QTest::newRow("emoji and cjk") << QStringLiteral("note 📝 👍🏽 报名表");
    }
    void roundTrips()
    {
        QFETCH(QString, text);
        const QByteArray token = NatsKeyCodec::encode(text);
        QVERIFY(QRegularExpression(QStringLiteral("^[-_=A-Za-z0-9]+$")).match(QString::fromLatin1(token)).hasMatch());
        QCOMPARE(NatsKeyCodec::decode(token), std::optional<QString>(text));
    }
    void rejectsForeignTokens()
    {
        for (const char *token : { "", "YQ.", "YQ==", "Y" })
            QVERIFY2(!NatsKeyCodec::decode(token), token);
    }
};

QTEST_GUILESS_MAIN(TestNatsKeyCodec)
#include "tst_natskeycodec.moc"
