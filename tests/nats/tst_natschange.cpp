// A conversation's change survives its trip between servers, and a payload that cannot be a
// change is refused instead of reaching sessions half-read.
#include "server/nats/NatsChange.h"

#include <QJsonDocument>
#include <QTest>
#include <memory>

class TestNatsChange : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void travelsWhole_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("new message") << int(NatsChange::NewMessage);
        QTest::newRow("modified") << int(NatsChange::Modified);
        QTest::newRow("extensions changed") << int(NatsChange::ExtensionsChanged);
        QTest::newRow("extensions deleted") << int(NatsChange::ExtensionsDeleted);
        QTest::newRow("conversation changed") << int(NatsChange::ConversationChanged);
    }
    void travelsWhole()
    {
        QFETCH(int, kind);
        NatsChange change;
        change.kind = NatsChange::Kind(kind);
        change.conversation = QStringLiteral("c2c:amy|bob");
        if (kind == NatsChange::NewMessage || kind == NatsChange::Modified) {
            change.message = std::make_shared<V2VORMessage>();
            change.message->setMsgID(QStringLiteral("m1"));
            change.message->setSender(QStringLiteral("amy"));
            change.message->setText(QStringLiteral("sign-up ✍"));
        }
        if (kind == NatsChange::ExtensionsChanged || kind == NatsChange::ExtensionsDeleted) {
            change.msgID = QStringLiteral("m1");
            change.versions = { { QStringLiteral("1"), 7 } };
        }
        if (kind == NatsChange::ExtensionsChanged) {
            change.extensions = { { QStringLiteral("1"), QStringLiteral("bob") } };
            change.firstWritten = { { QStringLiteral("1"), 5 } };
        }
        if (kind == NatsChange::ExtensionsDeleted)
            change.keys = { QStringLiteral("1") };

        const std::optional<NatsChange> back = NatsChange::fromJson(change.toJson());
        QVERIFY(back);
        QCOMPARE(int(back->kind), kind);
        QCOMPARE(back->conversation, change.conversation);
        QCOMPARE(bool(back->message), bool(change.message));
        if (change.message)
            QCOMPARE(back->message->text(), change.message->text());
        QCOMPARE(back->msgID, change.msgID);
        QCOMPARE(back->extensions, change.extensions);
        QCOMPARE(back->keys, change.keys);
        QCOMPARE(back->versions, change.versions);
        QCOMPARE(back->firstWritten, change.firstWritten);
    }

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

    void eachViewerGetsTheirOwnCopy()
    {
        V2VORMessage stored;
        stored.setSender(QStringLiteral("amy"));
        const QStringList pair { QStringLiteral("amy"), QStringLiteral("bob") };
        const V2VORMessagePtr amys = NatsChange::messageFor(stored, pair, QStringLiteral("amy"));
        const V2VORMessagePtr bobs = NatsChange::messageFor(stored, pair, QStringLiteral("bob"));
        QVERIFY(amys->isSelf());
        QVERIFY(!bobs->isSelf());
        QCOMPARE(amys->userID(), QStringLiteral("bob"));
        QCOMPARE(bobs->userID(), QStringLiteral("amy"));
        stored.setGroupID(QStringLiteral("g"));
        QVERIFY(NatsChange::messageFor(stored, pair, QStringLiteral("bob"))->userID().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestNatsChange)
#include "tst_natschange.moc"
