// The chat module's pieces around the message list: message kinds by "businessID" with the
// fallback to the unsupported row, attributed lines, the conversation list, and the "more"
// panel query.
#include "ChatTestSupport.h"
#include "sdk/ClientCalls.h"
#include "support/GroupFixture.h"

#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatInputMoreItems.h"
#include "kit/chat/ZIQChatService.h"
#include "kit/chat/ZIQConversationList.h"
#include "kit/chat/ZIQSystemMessageCellData.h"
#include "kit/chat/ZIQTextMessageCellData.h"
#include "kit/chat/ZIQUnsupportedMessageCellData.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "kit/core/ZIQExtensionProtocol.h"

#include <QRegularExpression>
#include <QSignalSpy>

namespace {

V2VORMessagePtr customMessage(const QByteArray &body, bool isSelf = false)
{
    auto message = std::make_shared<V2VORMessage>();
    message->setElemType(V2VOR_ELEM_TYPE_CUSTOM);
    message->setCustomElem(std::make_unique<V2VORCustomElem>(V2VORCustomElem { body, {}, {} }));
    message->setMsgID(QStringLiteral("msg-7"));
    message->setIsSelf(isSelf);
    return message;
}

struct MoreItemProvider : ZIQExtensionProtocol
{
    QList<ZIQExtensionInfo> onGetExtension(const QString &extensionID, const QVariantMap &param) override
    {
        asked << extensionID;
        lastParam = param;
        return offers;
    }
    QStringList asked;
    QVariantMap lastParam;
    QList<ZIQExtensionInfo> offers;
};

} // namespace

class ChatModuleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(registerSheetKind());
        QVERIFY(appendKind("ghost", "SheetCell", "NoSuchCellData"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("lacks a name"));
        QVERIFY(!appendKind("nameless", "", "SheetCellData"));
    }

    void buildsRowsByBusinessIDElseUnsupported_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("dataClass");
        QTest::addColumn<QString>("cellClass");
        QTest::addColumn<QString>("display");
        QTest::addColumn<bool>("canForward");
        const QString unsupported = "ZIQUnsupportedMessageCellData";
        const QString unsupportedCell = ZIQChatClassRegistry::unsupportedCellName;
        const QString unsupportedText = "[Unsupported message]";
        QTest::newRow("registered") << sheetBody(2) << "SheetCellData"
                                    << "SheetCell"
                                    << "[Sheet]" << false;
        QTest::newRow("unknown kind") << sheetBody(2, "poll") << unsupported << unsupportedCell << unsupportedText
                                      << false;
        QTest::newRow("kind without its data class")
            << sheetBody(2, "ghost") << unsupported << unsupportedCell << unsupportedText << false;
        QTest::newRow("plug-in cannot read it") << QByteArray(R"({"businessID":"sheet","broken":true})") << unsupported
                                                << unsupportedCell << "[Sheet]" << false;
        QTest::newRow("no businessID") << QByteArray(R"({"lines":2})") << unsupported << unsupportedCell
                                       << unsupportedText << false;
        QTest::newRow("not JSON") << QByteArray("sheet") << unsupported << unsupportedCell << unsupportedText << false;
    }

    void buildsRowsByBusinessIDElseUnsupported()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, dataClass);
        QFETCH(QString, cellClass);
        QFETCH(QString, display);
        QFETCH(bool, canForward);
        const ZIQChatClassRegistry &registry = ZIQChatClassRegistry::instance();
        const V2VORMessagePtr message = customMessage(body, true);
        const ZIQMessageCellDataPtr data = registry.cellDataForMessage(message);
        QCOMPARE(QString::fromLatin1(data->metaObject()->className()), dataClass);
        QCOMPARE(data->cellClassName(), cellClass);
        QCOMPARE(data->innerMessage(), message);
        QCOMPARE(data->msgID(), QStringLiteral("msg-7"));
        QCOMPARE(data->direction(), ZIQMessageDirection::Outgoing);
        QCOMPARE(registry.displayStringForMessage(message), display);
        QCOMPARE(registry.canForwardMessage(message), canForward);
        // Only the plug-in's cell measures; the kit's own cells come with the screens.
        QCOMPARE(registry.contentSizeOf(data).isValid(), cellClass == "SheetCell");
    }

    void textMessagesAreTheKitsOwnRows()
    {
        auto message = std::make_shared<V2VORMessage>();
        message->setElemType(V2VOR_ELEM_TYPE_TEXT);
        message->setText("hi <b>");
        const ZIQMessageCellDataPtr data = ZIQChatClassRegistry::instance().cellDataForMessage(message);
        QVERIFY(qobject_cast<ZIQTextMessageCellData *>(data.get()));
        QCOMPARE(data->direction(), ZIQMessageDirection::Incoming);
        QCOMPARE(ZIQChatClassRegistry::instance().displayStringForMessage(message), QStringLiteral("hi <b>"));
        QVERIFY(ZIQChatClassRegistry::instance().canForwardMessage(message));
    }

    void attributedLinesDrawTheirRunsAsRichText()
    {
        // A tips line: a grey prefix and a blue title.
        ZIQAttributedString line;
        QTextCharFormat grey;
        grey.setForeground(QColor("#8E8E93"));
        line.append("Bob <joined> ", grey);
        line.append("[Lunch]");
        line.setForegroundColor(13, 7, QColor("#007AFF"));
        line.setForegroundColor(40, 5, Qt::red); // beyond the end: ignored
        QCOMPARE(line.formats().size(), 2);
        QCOMPARE(line.formatAt(14).foreground().color(), QColor("#007AFF"));
        QCOMPARE(line.toHtml(),
            QStringLiteral("<span style=\"color:#ff8e8e93\">Bob &lt;joined&gt; </span>"
                           "<span style=\"color:#ff007aff\">[Lunch]</span>"));
        ZIQSystemMessageCellData data(ZIQMessageDirection::Incoming);
        data.setAttributedString(line);
        QCOMPARE(data.content(), QStringLiteral("Bob <joined> [Lunch]"));
    }

    void conversationListFollowsActivityAndReadMarks()
    {
        GroupFixture group;
        group.server()->setGroupInfo(group.groupID(), "Lunch club");
        group.server()->createGroup("quiet", { "alice", "bob" });
        ZIQConversationList list(group.client("alice"));
        QSignalSpy loaded(&list, &ZIQConversationList::loadFinished);
        list.load();
        QTRY_COMPARE(loaded.size(), 1);
        QCOMPARE(list.count(), 2);
        QCOMPARE(list.at(0).conversationID, QStringLiteral("group_quiet"));

        QVERIFY(sendToGroup(group.client("bob"), group.groupID(), sheetBody(1)));
        QVERIFY(sendText(group.client("carol"), group.groupID(), "me too"));
        QTRY_COMPARE(list.at(0).unreadCount, 2);
        QCOMPARE(list.at(0).title, QStringLiteral("Lunch club"));
        QCOMPARE(list.at(0).subTitle, QStringLiteral("me too"));
        CallOutcome<> sent;
        group.client("bob")->sendMessage(group.client("bob")->createCustomMessage(sheetBody(1)), "alice", {}, 0, false,
            std::nullopt, {}, sent.done(), sent.fail());
        QTRY_COMPARE(list.count(), 3);
        QCOMPARE(list.at(0).title, QStringLiteral("Bob"));
        QCOMPARE(list.at(0).subTitle, QStringLiteral("[Sheet]"));
        QCOMPARE(list.totalUnreadCount(), 3);

        const ZIQChatConversation opened = list.openConversation(list.rowOf("group_group-1"));
        QCOMPARE(opened, ZIQChatConversation({ group.groupID(), {} }));
        QTRY_COMPARE(list.at(list.rowOf("group_group-1")).unreadCount, 0);
        QCOMPARE(list.totalUnreadCount(), 1);
        QCOMPARE(list.at(2).conversationID, QStringLiteral("group_quiet"));
    }

    void morePanelAsksEveryChat_data()
    {
        QTest::addColumn<QString>("groupID");
        QTest::addColumn<bool>("minimalist");
        QTest::addColumn<bool>("filter");
        QTest::newRow("group chat") << "group-1" << false << false;
        QTest::newRow("one-to-one chat") << "" << false << false;
        QTest::newRow("minimalist, filtered") << "group-1" << true << true;
    }

    void morePanelAsksEveryChat()
    {
        QFETCH(QString, groupID);
        QFETCH(bool, minimalist);
        QFETCH(bool, filter);
        MoreItemProvider light, heavy;
        light.offers = { { 100, "Poll", {}, {}, {} } };
        heavy.offers = { { 300, "Sheet", {}, {}, {} } };
        for (const QString &id : { ZIQCore_ZIQChatExtension_InputViewMoreItem_ClassicExtensionID,
                 ZIQCore_ZIQChatExtension_InputViewMoreItem_MinimalistExtensionID }) {
            ZIQCore::registerExtension(id, &light);
            ZIQCore::registerExtension(id, &heavy);
        }
        QObject screen, navigation;
        const QList<ZIQExtensionInfo> items
            = ZIQChatInputMoreItems::getItems({ groupID, minimalist, filter, &screen, &navigation });

        QCOMPARE(items.size(), 2);
        QCOMPARE(items.first().text, QStringLiteral("Sheet"));
        QCOMPARE(heavy.asked,
            QStringList({ minimalist ? ZIQCore_ZIQChatExtension_InputViewMoreItem_MinimalistExtensionID
                                     : ZIQCore_ZIQChatExtension_InputViewMoreItem_ClassicExtensionID }));
        const QVariantMap param = heavy.lastParam;
        QCOMPARE(param.value(ZIQCore_ZIQChatExtension_InputViewMoreItem_GroupID).toString(), groupID);
        QCOMPARE(param.value(ZIQCore_ZIQChatExtension_InputViewMoreItem_FilterGroupNote).toBool(), filter);
        QCOMPARE(param.value(ZIQCore_ZIQChatExtension_InputViewMoreItem_VC).value<QObject *>(), &screen);
        QCOMPARE(param.value(ZIQCore_ZIQChatExtension_InputViewMoreItem_PushVC).value<QObject *>(), &navigation);
    }
};

QTEST_MAIN(ChatModuleTest)
#include "tst_chatmodule.moc"
