// The rules shared by every implementation of the messaging service: limits at their edges,
// one-to-one keys and peers, conversations as each member sees them, and list order.
#include "sdk/ServiceRules.h"
#include "sdk/V2VORCustomElem.h"

#include <QTest>

using namespace ServiceRules;

class TestServiceRules : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void body_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("custom");
        QTest::addColumn<int>("code");
        const int limit = V2VORLimits::kMaxMessageBodyBytes;
        QTest::newRow("text at the limit") << QString(limit, QLatin1Char('a')) << QByteArray() << 0;
        QTest::newRow("text one over") << QString(limit + 1, QLatin1Char('a')) << QByteArray()
                                       << int(V2VOR_ERR_MESSAGE_BODY_TOO_LARGE);
        // Three UTF-8 bytes a character: fewer characters than the limit, still over it.
        QTest::newRow("text counted in UTF-8")
            << QString(limit / 3 + 1, QChar(0x4e2d)) << QByteArray() << int(V2VOR_ERR_MESSAGE_BODY_TOO_LARGE);
        QTest::newRow("custom data decides over text")
            << QString(limit + 1, QLatin1Char('a')) << QByteArray(limit, 'x') << 0;
        QTest::newRow("custom data one over")
            << QString() << QByteArray(limit + 1, 'x') << int(V2VOR_ERR_MESSAGE_BODY_TOO_LARGE);
    }
    void body()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, custom);
        QFETCH(int, code);
        V2VORMessage message;
        message.setText(text);
        if (!custom.isEmpty()) {
            auto elem = std::make_unique<V2VORCustomElem>();
            elem->data = custom;
            message.setCustomElem(std::move(elem));
        }
        QCOMPARE(checkBody(message).code, code);
    }

    void callSize_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("code");
        QTest::newRow("none") << 0 << int(V2VOR_ERR_INVALID_PARAMETERS);
        QTest::newRow("one") << 1 << 0;
        QTest::newRow("at the limit") << V2VORLimits::kMaxExtensionsPerCall << 0;
        QTest::newRow("one over") << V2VORLimits::kMaxExtensionsPerCall + 1
                                  << int(V2VOR_ERR_EXTENSION_TOO_MANY_IN_CALL);
    }
    void callSize()
    {
        QFETCH(int, count);
        QFETCH(int, code);
        QCOMPARE(checkCallSize(count).code, code);
    }

    void directKeyIsTheSameBothWays()
    {
        QCOMPARE(directConversationKey(QStringLiteral("bob"), QStringLiteral("amy")), QStringLiteral("c2c:amy|bob"));
        QCOMPARE(directConversationKey(QStringLiteral("amy"), QStringLiteral("bob")), QStringLiteral("c2c:amy|bob"));
    }

    void conversationAs_data()
    {
        QTest::addColumn<bool>("isGroup");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("viewer");
        QTest::addColumn<QString>("conversationID");
        QTest::addColumn<QString>("peer");
        QTest::addColumn<QString>("showName");
        QTest::addColumn<QString>("faceURL");
        QTest::newRow("named group") << true << "Picnic"
                                     << "amy"
                                     << "group_k"
                                     << ""
                                     << "Picnic"
                                     << "group.png";
        QTest::newRow("unnamed group shows its ID") << true << ""
                                                    << "amy"
                                                    << "group_k"
                                                    << ""
                                                    << "k"
                                                    << "group.png";
        QTest::newRow("first member sees the second") << false << ""
                                                      << "amy"
                                                      << "c2c_bob"
                                                      << "bob"
                                                      << "Bobby"
                                                      << "bob.png";
        QTest::newRow("second member sees the first") << false << ""
                                                      << "bob"
                                                      << "c2c_amy"
                                                      << "amy"
                                                      << "amy"
                                                      << "";
    }
    void conversationAs()
    {
        QFETCH(bool, isGroup);
        QFETCH(QString, name);
        QFETCH(QString, viewer);
        const ConversationParts parts { QStringLiteral("k"), isGroup, { QStringLiteral("amy"), QStringLiteral("bob") },
            name, QStringLiteral("group.png") };
        // Amy has no nick name: her ID stands in for it.
        const auto profiles = [](const QString &userID) {
            return userID == QLatin1String("bob") ? Profile { QStringLiteral("Bobby"), QStringLiteral("bob.png") }
                                                  : Profile {};
        };
        const V2VORConversation seen = ServiceRules::conversationAs(parts, viewer, profiles);
        QTEST(seen.conversationID, "conversationID");
        QTEST(seen.userID, "peer");
        QTEST(seen.showName, "showName");
        QTEST(seen.faceURL, "faceURL");
        QCOMPARE(seen.type, isGroup ? V2VOR_GROUP : V2VOR_C2C);
        QCOMPARE(seen.groupID, isGroup ? QStringLiteral("k") : QString());
    }

    void listIsLatestFirstThenByID()
    {
        const auto conversation = [](const char *id, quint64 orderKey) {
            V2VORConversation one;
            one.conversationID = QString::fromLatin1(id);
            one.orderKey = orderKey;
            return one;
        };
        QList<V2VORConversation> list { conversation("group_b", 0), conversation("group_old", 3),
            conversation("group_a", 0), conversation("c2c_new", 9) };
        sortConversations(list);
        QStringList order;
        for (const V2VORConversation &one : std::as_const(list))
            order.append(one.conversationID);
        QCOMPARE(order, QStringList({ "c2c_new", "group_old", "group_a", "group_b" }));
    }
};

QTEST_GUILESS_MAIN(TestServiceRules)
#include "tst_servicerules.moc"
