// The tips row: its line names the sender (by user ID when they have no nickname) and ends in
// the note's title in brackets, grey then blue in either theme; only a JSON body makes a row; a
// tap opens the editor only when it is this very row's, over its own message.
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

V2VORMessagePtr tipsMessage(const QByteArray &body, const QString &nickName = QStringLiteral("Ben"),
    const QString &sender = QStringLiteral("ben"))
{
    auto message = std::make_shared<V2VORMessage>();
    auto elem = std::make_unique<V2VORCustomElem>();
    elem->data = body;
    message->setCustomElem(std::move(elem));
    message->setSender(sender);
    message->setNickName(nickName);
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
    const V2VORMessagePtr message = tipsMessage(titled(QStringLiteral("Picnic")), {}, sender);
    ZIQMessageCellDataPtr data = ZIQGroupNoteTipsCellData::getCellData(message);
    data->setMsgID(message->msgID());
    data->setInnerMessage(message);
    cell->fillWithData(data);
    return cell;
}

// Which row the chat says was tapped, and what it offers to push onto.
enum Tapped { ThisRow, OtherRow, NoRow };
enum PushOnto { Navigation, Nothing, NotANavigation };

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
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("line"); // null: the body makes no row
        const QString updated = QStringLiteral(" updated the group note ");
        QTest::newRow("nickname") << "Ben Carter" << titled("Picnic") << "Ben Carter" + updated + "[Picnic]";
        QTest::newRow("no nickname") << "" << titled("Picnic") << "ben" + updated + "[Picnic]";
        QTest::newRow("outside the basic plane")
            << "Chloé 🥾" << titled("山顶 🏔️ Hike") << "Chloé 🥾" + updated + "[山顶 🏔️ Hike]";
        QTest::newRow("empty title") << "Ben" << titled("") << "Ben" + updated + "[]";
        QTest::newRow("no title") << "Ben" << QByteArray(R"({"businessID":"group_note_tips"})")
                                  << "Ben" + updated + "[]";
        QTest::newRow("a lone JSON value") << "Ben" << QByteArray(R"("just text")") << "Ben" + updated + "[]";
        QTest::newRow("not JSON") << "Ben" << QByteArray("{title: Picnic") << QString();
        QTest::newRow("two values") << "Ben" << QByteArray("1, 2") << QString();
        QTest::newRow("empty body") << "Ben" << QByteArray() << QString();
    }

    void theLineNamesTheSenderAndTheTitle()
    {
        QFETCH(QString, nickName);
        QFETCH(QByteArray, body);
        QFETCH(QString, line);
        const auto data = ZIQGroupNoteTipsCellData::getCellData(tipsMessage(body, nickName));
        QCOMPARE(data ? data->content() : QString(), line);
        QCOMPARE(ZIQGroupNoteTipsCellData::getDisplayString(tipsMessage(body)), QStringLiteral("[Group Note]"));
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
        const auto data = ZIQGroupNoteTipsCellData::getCellData(tipsMessage(titled("山顶 🏔️"), "Chloé 🥾"));
        const ZIQAttributedString line = data->attributedString();
        const int titleStart = int(line.string().indexOf(QStringLiteral(" [")));
        for (int i = 0; i < line.string().size(); ++i) {
            const QColor expected = i < titleStart ? grey : blue;
            QVERIFY2(line.formatAt(i).foreground().color() == expected, qPrintable(QString::number(i)));
        }
    }

    void onlyThisRowsTapOpensTheEditor_data()
    {
        QTest::addColumn<int>("tapped");
        QTest::addColumn<int>("pushOnto");
        QTest::addColumn<bool>("opens");
        QTest::newRow("this row") << int(ThisRow) << int(Navigation) << true;
        QTest::newRow("another tips row") << int(OtherRow) << int(Navigation) << false;
        QTest::newRow("no row") << int(NoRow) << int(Navigation) << false;
        QTest::newRow("no navigation controller") << int(ThisRow) << int(Nothing) << false;
        QTest::newRow("not a navigation controller") << int(ThisRow) << int(NotANavigation) << false;
    }

    void onlyThisRowsTapOpensTheEditor()
    {
        QFETCH(int, tapped);
        QFETCH(int, pushOnto);
        QFETCH(bool, opens);
        platform::ScreenScope screen({ 375, 812 });
        platform::NavigationController navigation(new platform::ViewController);
        auto self = filledCell(QStringLiteral("ben"));
        auto other = filledCell(QStringLiteral("dan"));
        QObject stranger;
        QObject *const rows[] = { self.get(), other.get(), nullptr };
        QObject *const targets[] = { &navigation, nullptr, &stranger };
        const QVariantMap param {
            { ZIQCore_ZIQPluginNotify_PluginCustomCellClick_Cell, QVariant::fromValue(rows[tapped]) },
            { ZIQCore_ZIQPluginNotify_PluginCustomCellClick_PushVC, QVariant::fromValue(targets[pushOnto]) },
        };
        self->pluginMsgSelectCallback(param);
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
