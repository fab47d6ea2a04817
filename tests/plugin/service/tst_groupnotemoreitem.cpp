// The "group note" item of the chat's "more" panel: offered in group chats of the classic style
// only, unless the host filters it; reading the host's parameters by type; and a tap that puts
// the input bar away and, given a navigation stack, opens the editor for a new note there.
#include "support/GroupFixture.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQChatInputController.h"
#include "kit/chat/ZIQChatInputMoreItems.h"
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQThemeManager.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "platform/NavigationController.h"
#include "platform/Screen.h"
#include "platform/TextField.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"
#include "plugin/service/ZIQGroupNoteExtensionObserver.h"

#include <QTest>

namespace {

const QString GroupID = QStringLiteral("group-1");

QVariantMap groupChat(const QVariantMap &overrides = {})
{
    QVariantMap param {
        { ZIQCore_ZIQChatExtension_InputViewMoreItem_GroupID, GroupID },
        { ZIQCore_ZIQChatExtension_InputViewMoreItem_FilterGroupNote, false },
    };
    param.insert(overrides);
    return param;
}

} // namespace

class TestGroupNoteMoreItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        ZIQGlobalization::setPreferredLanguage(QStringLiteral("en"));
        ZIQBaseChatViewController::registerKitCells();
        ZIQGroupNoteExtensionObserver::load();
    }

    void offeredOnlyInClassicGroupChats_data()
    {
        QTest::addColumn<QString>("extensionID");
        QTest::addColumn<QVariantMap>("param");
        QTest::addColumn<bool>("offered");
        const QString classic = ZIQCore_ZIQChatExtension_InputViewMoreItem_ClassicExtensionID;
        const QString groupKey = ZIQCore_ZIQChatExtension_InputViewMoreItem_GroupID;
        const QString filterKey = ZIQCore_ZIQChatExtension_InputViewMoreItem_FilterGroupNote;
        QTest::newRow("group chat") << classic << groupChat() << true;
        QTest::newRow("one-to-one chat") << classic << groupChat({ { groupKey, QString() } }) << false;
        QTest::newRow("no group at all") << classic << QVariantMap() << false;
        QTest::newRow("group ID not a string") << classic << groupChat({ { groupKey, 42 } }) << false;
        QTest::newRow("filtered") << classic << groupChat({ { filterKey, true } }) << false;
        QTest::newRow("filtered by number") << classic << groupChat({ { filterKey, 1 } }) << false;
        QTest::newRow("filter not a number") << classic << groupChat({ { filterKey, QStringLiteral("1") } }) << true;
        QTest::newRow("minimalist") << ZIQCore_ZIQChatExtension_InputViewMoreItem_MinimalistExtensionID << groupChat()
                                    << false;
        QTest::newRow("another extension point") << QStringLiteral("SomeOtherExtension") << groupChat() << false;
    }

    void offeredOnlyInClassicGroupChats()
    {
        QFETCH(QString, extensionID);
        QFETCH(QVariantMap, param);
        QFETCH(bool, offered);
        // The minimalist style is not even asked: the observer never registered for it.
        const QList<ZIQExtensionInfo> viaCore = ZIQCore::getExtensionList(extensionID, param);
        const QList<ZIQExtensionInfo> asked
            = ZIQGroupNoteExtensionObserver::shareInstance()->onGetExtension(extensionID, param);
        QCOMPARE(asked.size(), offered ? 1 : 0);
        QCOMPARE(viaCore.size(), asked.size());
        if (!offered)
            return;
        QCOMPARE(asked.first().text, QStringLiteral("Group Note"));
        QVERIFY(!asked.first().icon.isNull());
    }

    void theIconFallsBackToTheCommonBundlesImage()
    {
        ZIQThemeManager *themes = ZIQThemeManager::shareManager();
        const QString commonTheme = themes->themeResourcePath(ZIQThemeModuleCommon);
        themes->registerThemeResourcePath(QStringLiteral("/nonexistent/theme"), ZIQThemeModuleCommon);
        const QList<ZIQExtensionInfo> items = ZIQChatInputMoreItems::getItems({ GroupID });
        themes->registerThemeResourcePath(commonTheme, ZIQThemeModuleCommon);
        QCOMPARE(items.size(), 1);
        QVERIFY(!items.first().icon.pixmap(32, 32).isNull());
    }

    void aTapPutsTheBarAwayAndOpensTheEditor_data()
    {
        QTest::addColumn<bool>("withChat");
        QTest::addColumn<bool>("withNavigation");
        QTest::newRow("chat and navigation") << true << true;
        QTest::newRow("no navigation controller") << true << false;
        QTest::newRow("navigation only") << false << true;
    }

    void aTapPutsTheBarAwayAndOpensTheEditor()
    {
        QFETCH(bool, withChat);
        QFETCH(bool, withNavigation);
        platform::ScreenScope screen({ 375, 812 });
        GroupFixture group;
        auto *chat = new ZIQBaseChatViewController({ group.groupID(), {} }, group.client(QStringLiteral("bob")));
        platform::NavigationController navigation(chat);
        navigation.view()->resize(375, 812);
        navigation.view()->show();
        ZIQChatInputController *input = chat->inputController();
        input->textField()->setText(QStringLiteral("half a thought"));
        input->setMorePanelVisible(true);
        chat->setNeedScrollToBottom(false);

        const QList<ZIQExtensionInfo> items = ZIQChatInputMoreItems::getItems({ group.groupID() });
        QCOMPARE(items.size(), 1);
        // A screen of the wrong kind under the chat's key counts as none.
        QObject stranger;
        items.first().onClicked({
            { ZIQCore_ZIQChatExtension_InputViewMoreItem_VC,
                QVariant::fromValue<QObject *>(withChat ? static_cast<QObject *>(chat) : &stranger) },
            { ZIQCore_ZIQChatExtension_InputViewMoreItem_PushVC,
                QVariant::fromValue<QObject *>(withNavigation ? &navigation : nullptr) },
        });

        QCOMPARE(input->textField()->text().isEmpty(), withChat);
        QCOMPARE(input->isMorePanelVisible(), !withChat);
        QCOMPARE(chat->needScrollToBottom(), withChat);
        auto *editor = qobject_cast<ZIQGroupNoteViewController *>(navigation.topViewController());
        QCOMPARE(editor != nullptr, withNavigation);
        if (!editor)
            return;
        QCOMPARE(editor->groupID(), group.groupID());
        QVERIFY(editor->isCreateNew());
        QVERIFY(!editor->dataProvider()->message());
        QVERIFY(navigation.isTransitioning()); // pushed with animation
    }
};

QTEST_MAIN(TestGroupNoteMoreItem)
#include "tst_groupnotemoreitem.moc"
