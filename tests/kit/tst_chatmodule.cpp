// The chat module's pieces around the message list: message kinds by "businessID" with the
// fallback to the unsupported row, attributed lines, and the "more" panel query.
#include "ChatTestSupport.h"

#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatInputMoreItems.h"
#include "kit/chat/ZIQChatService.h"
#include "kit/chat/ZIQSystemMessageCellData.h"
#include "kit/chat/ZIQUnsupportedMessageCellData.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"

#include <QRegularExpression>

namespace {

/// A message of alice's own with a custom body.
V2VORMessagePtr customMessage(const QByteArray &body)
{
    auto message = std::make_shared<V2VORMessage>();
    message->setElemType(V2VOR_ELEM_TYPE_CUSTOM);
    message->setCustomElem(std::make_unique<V2VORCustomElem>(V2VORCustomElem { body, {}, {} }));
    message->setIsSelf(true);
    return message;
}

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
        QTest::addColumn<bool>("registered");
        QTest::addColumn<QString>("display");
        const QString unsupported = "[Unsupported message]";
        QTest::newRow("registered") << sheetBody(2) << true << "[Sheet]";
        QTest::newRow("unknown kind") << sheetBody(2, "poll") << false << unsupported;
        QTest::newRow("kind without its data class") << sheetBody(2, "ghost") << false << unsupported;
        QTest::newRow("plug-in cannot read it") << QByteArray(R"({"businessID":"sheet","broken":true})") << false
                                                << "[Sheet]";
        QTest::newRow("not JSON") << QByteArray("sheet") << false << unsupported;
    }

    void buildsRowsByBusinessIDElseUnsupported()
    {
        QFETCH(QByteArray, body);
        QFETCH(bool, registered);
        QFETCH(QString, display);
        const ZIQChatClassRegistry &registry = ZIQChatClassRegistry::instance();
        const V2VORMessagePtr message = customMessage(body);
        const ZIQMessageCellDataPtr data = registry.cellDataForMessage(message);
        QCOMPARE(QString::fromLatin1(data->metaObject()->className()),
            registered ? "SheetCellData" : "ZIQUnsupportedMessageCellData");
        QCOMPARE(data->cellClassName(), registered ? "SheetCell" : ZIQChatClassRegistry::unsupportedCellName);
        QCOMPARE(data->innerMessage(), message);
        QCOMPARE(data->direction(), ZIQMessageDirection::Outgoing);
        QCOMPARE(registry.displayStringForMessage(message), display);
        QVERIFY(!registry.canForwardMessage(message));
        // Only the plug-in's cell measures; the kit's own cells come with the screens.
        QCOMPARE(registry.contentSizeOf(data).isValid(), registered);
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

    // The chat screen asks the classic panel's providers; a minimalist chat asks its own.
    void minimalistMorePanelAsksItsOwnProviders()
    {
        MoreProvider classic, minimalist;
        ZIQCore::registerExtension(ZIQCore_ZIQChatExtension_InputViewMoreItem_ClassicExtensionID, &classic);
        ZIQCore::registerExtension(ZIQCore_ZIQChatExtension_InputViewMoreItem_MinimalistExtensionID, &minimalist);
        QObject screen, navigation;
        QCOMPARE(ZIQChatInputMoreItems::getItems({ "group-1", true, true, &screen, &navigation }).size(), 1);
        QVERIFY(classic.asked.isEmpty());
        QCOMPARE(minimalist.asked.value(ZIQCore_ZIQChatExtension_InputViewMoreItem_GroupID).toString(), "group-1");
        QCOMPARE(minimalist.asked.value(ZIQCore_ZIQChatExtension_InputViewMoreItem_FilterGroupNote).toBool(), true);
    }
};

QTEST_MAIN(ChatModuleTest)
#include "tst_chatmodule.moc"
