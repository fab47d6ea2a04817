// A payload on a conversation's subject that cannot be a change is refused instead of reaching
// sessions half-read.
#include "server/nats/NatsChange.h"

#include <QJsonDocument>
#include <QTest>

class TestNatsChange : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void malformedIsRefused_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("unknown event") << QByteArray(R"({"ev":"nope","conv":"g","data":{}})");
        QTest::newRow("no conversation") << QByteArray(R"({"ev":"conversationChanged","data":{}})");
        QTest::newRow("message event without message") << QByteArray(R"({"ev":"newMessage","conv":"g","data":{}})");
    }
    void malformedIsRefused()
    {
        QFETCH(QByteArray, json);
        QVERIFY(!NatsChange::fromJson(QJsonDocument::fromJson(json).object()));
    }
};

QTEST_GUILESS_MAIN(TestNatsChange)
#include "tst_natschange.moc"
