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
        // Three UTF-8 bytes a character: fewer characters than the limit, still over it.
        QTest::newRow("text counted in UTF-8")
            << QString(limit / 3 + 1, QChar(0x4e2d)) << QByteArray() << int(V2VOR_ERR_MESSAGE_BODY_TOO_LARGE);
        QTest::newRow("custom data decides over text")
            << QString(limit + 1, QLatin1Char('a')) << QByteArray(limit, 'x') << 0;
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

    void callSizeAndDirectKey()
    {
        QCOMPARE(checkCallSize(0).code, int(V2VOR_ERR_INVALID_PARAMETERS));
        QCOMPARE(directConversationKey(QStringLiteral("bob"), QStringLiteral("amy")), QStringLiteral("c2c:amy|bob"));
        QCOMPARE(directConversationKey(QStringLiteral("amy"), QStringLiteral("bob")), QStringLiteral("c2c:amy|bob"));
    }

    // A member with no nick name shows by their ID; faces come from the peer's profile.
    void directConversationShowsThePeer()
    {
        const ConversationParts parts { QStringLiteral("k"), false, { QStringLiteral("amy"), QStringLiteral("bob") },
            {}, QStringLiteral("group.png") };
        const auto profiles = [](const QString &userID) {
            return userID == QLatin1String("bob") ? Profile { QStringLiteral("Bobby"), QStringLiteral("bob.png") }
                                                  : Profile {};
        };
        const V2VORConversation bobSees = conversationAs(parts, QStringLiteral("bob"), profiles);
        QCOMPARE(QStringList({ bobSees.conversationID, bobSees.userID, bobSees.showName, bobSees.faceURL }),
            QStringList({ "c2c_amy", "amy", "amy", "" }));
        QCOMPARE(conversationAs(parts, QStringLiteral("amy"), profiles).faceURL, QStringLiteral("bob.png"));
    }

    void listIsLatestFirstThenByID()
    {
        QList<V2VORConversation> list;
        for (const auto &[id, orderKey] : { std::pair { "group_b", 0 }, { "group_old", 3 }, { "group_a", 0 } }) {
            list.append(V2VORConversation {});
            list.last().conversationID = QString::fromLatin1(id);
            list.last().orderKey = orderKey;
        }
        sortConversations(list);
        QStringList order;
        for (const V2VORConversation &one : std::as_const(list))
            order.append(one.conversationID);
        QCOMPARE(order, QStringList({ "group_old", "group_a", "group_b" }));
    }
};

QTEST_GUILESS_MAIN(TestServiceRules)
#include "tst_servicerules.moc"
