// The tips row: its line names the sender (by user ID when they have no nickname) and ends in
// the note's title in brackets, the name's part grey and the title's part blue in either theme;
// only a JSON body makes a row; a tap opens the editor only when it is this very row's tap, and
// a row in a real chat opens the editor over its own message.
#include "sdk/ClientCalls.h"
#include "support/GroupFixture.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQChatMessageList.h"
#include "kit/chat/ZIQChatService.h"
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"
#include "kit/core/ZIQCoreDefines.h"
#include "platform/NavigationController.h"
#include "platform/Screen.h"
#include "platform/TableView.h"
#include "plugin/chat/ZIQGroupNoteTipsCell.h"
#include "plugin/chat/ZIQGroupNoteTipsCellData.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"
#include "plugin/service/ZIQGroupNoteService.h"

#include <QTest>

namespace {

V2VORMessagePtr tipsMessage(const QByteArray &body, const QString &sender = QStringLiteral("ben"),
    const QString &nickName = QStringLiteral("Ben"), bool isSelf = false)
{
    auto message = std::make_shared<V2VORMessage>();
    auto elem = std::make_unique<V2VORCustomElem>();
    elem->data = body;
    message->setCustomElem(std::move(elem));
    message->setSender(sender);
    message->setNickName(nickName);
    message->setIsSelf(isSelf);
    message->setMsgID(QStringLiteral("tips-") + sender);
    return message;
}

QByteArray titled(const QString &title)
{
    return QStringLiteral(R"({"businessID":"group_note_tips","title":"%1"})").arg(title).toUtf8();
}

/// A tips row filled with a message of `sender`, as the chat fills it.
std::unique_ptr<ZIQGroupNoteTipsCell> filledCell(const QString &sender)
{
    auto cell = std::make_unique<ZIQGroupNoteTipsCell>();
    const V2VORMessagePtr message = tipsMessage(titled(QStringLiteral("Picnic")), sender);
    ZIQMessageCellDataPtr data = ZIQGroupNoteTipsCellData::getCellData(message);
    data->setMsgID(message->msgID());
    data->setInnerMessage(message);
    cell->fillWithData(data);
    return cell;
}

} // namespace

class TestGroupNoteTipsCell : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { ZIQGlobalization::setPreferredLanguage(QStringLiteral("en")); }

    void cleanup() { ZIQThemeManager::shareManager()->applyTheme(ZIQThemeLight); }

    void theLineNamesTheSenderAndTheTitle_data()
    {
        QTest::addColumn<QString>("nickName");
        QTest::addColumn<QString>("sender");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("titlePart");
        const QString updated = QStringLiteral("%1 updated the group note");
        QTest::newRow("nickname") << "Ben Carter"
                                  << "ben" << titled("Picnic") << updated.arg("Ben Carter") << " [Picnic]";
        QTest::newRow("no nickname") << ""
                                     << "ben" << titled("Picnic") << updated.arg("ben") << " [Picnic]";
        QTest::newRow("outside the basic plane")
            << "Chloé 🥾"
            << "chloe" << titled("山顶 🏔️ Hike") << updated.arg("Chloé 🥾") << " [山顶 🏔️ Hike]";
        QTest::newRow("empty title") << "Ben"
                                     << "ben" << titled("") << updated.arg("Ben") << " []";
        QTest::newRow("no title") << "Ben"
                                  << "ben" << QByteArray(R"({"businessID":"group_note_tips"})") << updated.arg("Ben")
                                  << " []";
        QTest::newRow("a lone JSON value") << "Ben"
                                           << "ben" << QByteArray(R"("just text")") << updated.arg("Ben") << " []";
    }

    void theLineNamesTheSenderAndTheTitle()
    {
        QFETCH(QString, nickName);
        QFETCH(QString, sender);
        QFETCH(QByteArray, body);
        QFETCH(QString, prefix);
        QFETCH(QString, titlePart);
        const auto data = ZIQGroupNoteTipsCellData::getCellData(tipsMessage(body, sender, nickName));
        QVERIFY(data);
        QCOMPARE(data->content(), prefix + titlePart);
        QVERIFY(data->attrStr().isEmpty());
    }

    void theNameIsGreyAndTheBracketedTitleBlue_data()
    {
        QTest::addColumn<QString>("theme");
        QTest::newRow("light") << ZIQThemeLight;
        QTest::newRow("dark") << ZIQThemeDark;
    }

    void theNameIsGreyAndTheBracketedTitleBlue()
    {
        QFETCH(QString, theme);
        ZIQThemeManager::shareManager()->applyTheme(theme);
        const QColor grey = ZIQTheme::d_systemGrayColor();
        const QColor blue = ZIQTheme::d_systemBlueColor();
        QVERIFY(grey != blue);
        const auto data = ZIQGroupNoteTipsCellData::getCellData(
            tipsMessage(titled("山顶 🏔️"), QStringLiteral("c"), "Chloé 🥾"));
        const ZIQAttributedString line = data->attributedString();
        const int titleStart = int(line.string().indexOf(QStringLiteral(" [")));
        for (int i = 0; i < line.string().size(); ++i) {
            const QColor expected = i < titleStart ? grey : blue;
            QVERIFY2(line.formatAt(i).foreground().color() == expected, qPrintable(QString::number(i)));
        }
    }

    void onlyAJsonBodyMakesARow_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("row");
        QTest::newRow("object") << titled("Picnic") << true;
        QTest::newRow("number") << QByteArray("5") << true;
        QTest::newRow("not JSON") << QByteArray("{title: Picnic") << false;
        QTest::newRow("two values") << QByteArray("1, 2") << false;
        QTest::newRow("empty") << QByteArray() << false;
    }

    void onlyAJsonBodyMakesARow()
    {
        QFETCH(QByteArray, body);
        QFETCH(bool, row);
        QCOMPARE(ZIQGroupNoteTipsCellData::getCellData(tipsMessage(body)) != nullptr, row);
        QCOMPARE(ZIQGroupNoteTipsCellData::getDisplayString(tipsMessage(body)), QStringLiteral("[Group Note]"));
    }

    void onlyThisRowsTapOpensTheEditor_data()
    {
        QTest::addColumn<QString>("tapped"); // which row the chat says was tapped
        QTest::addColumn<QString>("pushOnto");
        QTest::addColumn<bool>("opens");
        QTest::newRow("this row") << "this"
                                  << "navigation" << true;
        QTest::newRow("another tips row") << "other"
                                          << "navigation" << false;
        QTest::newRow("a system row") << "system"
                                      << "navigation" << false;
        QTest::newRow("no row") << "none"
                                << "navigation" << false;
        QTest::newRow("no navigation controller") << "this"
                                                  << "none" << false;
        QTest::newRow("not a navigation controller") << "this"
                                                     << "object" << false;
        QTest::newRow("this row, gone") << "gone"
                                        << "navigation" << false;
    }

    void onlyThisRowsTapOpensTheEditor()
    {
        QFETCH(QString, tapped);
        QFETCH(QString, pushOnto);
        QFETCH(bool, opens);
        platform::ScreenScope screen({ 375, 812 });
        auto root = new platform::ViewController;
        platform::NavigationController navigation(root);
        auto self = filledCell(QStringLiteral("ben"));
        auto other = filledCell(QStringLiteral("dan"));
        ZIQSystemMessageCell system;
        QObject stranger;
        const QHash<QString, QObject *> rows { { "this", self.get() }, { "other", other.get() }, { "system", &system },
            { "none", nullptr } };
        const QHash<QString, QObject *> targets { { "navigation", &navigation }, { "none", nullptr },
            { "object", &stranger } };
        auto callback = self->pluginMsgSelectCallback;
        if (tapped == "gone")
            self.reset();
        callback({
            { ZIQCore_ZIQPluginNotify_PluginCustomCellClick_Cell, QVariant::fromValue(rows.value(tapped)) },
            { ZIQCore_ZIQPluginNotify_PluginCustomCellClick_PushVC, QVariant::fromValue(targets.value(pushOnto)) },
        });
        auto *editor = qobject_cast<ZIQGroupNoteViewController *>(navigation.topViewController());
        QCOMPARE(editor != nullptr, opens);
        if (!editor)
            return;
        // The row's message ID stands where a group ID goes, and the tips message is the note's.
        QCOMPARE(editor->groupID(), QStringLiteral("tips-ben"));
        QCOMPARE(editor->dataProvider()->message(), self->messageData()->innerMessage());
        QVERIFY(!editor->isCreateNew());
    }

    void aTipsRowInAChatOpensTheEditorOverItsMessage()
    {
        platform::ScreenScope screen({ 375, 812 });
        ZIQChatService::registerInCore();
        ZIQBaseChatViewController::registerKitCells();
        ZIQGroupNoteService::sharedInstance();
        GroupFixture group;
        const V2VORMessagePtr sent
            = sendToGroup(group.client(QStringLiteral("alice")), group.groupID(), titled(QStringLiteral("Picnic")));
        QVERIFY(sent);
        auto *chat = new ZIQBaseChatViewController({ group.groupID(), {} }, group.client(QStringLiteral("bob")));
        platform::NavigationController navigation(chat);
        navigation.view()->resize(375, 812);
        navigation.view()->show();
        QTRY_VERIFY(qobject_cast<ZIQGroupNoteTipsCell *>(chat->tableView()->cellForRow({ 0, 0 })));
        auto *row = qobject_cast<ZIQGroupNoteTipsCell *>(chat->tableView()->cellForRow({ 0, 0 }));
        QCOMPARE(row->messageData()->msgID(), sent->msgID());
        QTest::mouseClick(row, Qt::LeftButton, {}, row->rect().center());
        auto *editor = qobject_cast<ZIQGroupNoteViewController *>(navigation.topViewController());
        QVERIFY(editor);
        QCOMPARE(editor->groupID(), sent->msgID());
    }
};

QTEST_MAIN(TestGroupNoteTipsCell)
#include "tst_groupnotetipscell.moc"
