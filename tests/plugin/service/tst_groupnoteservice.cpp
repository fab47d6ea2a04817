// The plug-in's start-up over real clients: the version record reaches the messaging client's
// log at once or after the next login, the theme files are found, and bundles are looked up in the program, beside it,
// then in the module's framework folder, each cache keeping its answer. Its "group note" item of the chat's "more"
// panel: offered in group chats of the classic style only, unless the host filters it; reading the host's parameters by
// type; and a tap that puts the input bar away and, given a navigation stack, opens the editor for a new note there.
#include "support/GroupFixture.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQChatInputController.h"
#include "kit/chat/ZIQChatInputMoreItems.h"
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQLogin.h"
#include "kit/common/ZIQThemeManager.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "platform/NavigationController.h"
#include "platform/Screen.h"
#include "platform/TextField.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"
#include "plugin/service/ZIQGroupNoteBundle.h"
#include "plugin/service/ZIQGroupNoteDefines.h"
#include "plugin/service/ZIQGroupNoteExtensionObserver.h"
#include "plugin/service/ZIQGroupNoteService.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

namespace {

QString programDir()
{
    return QCoreApplication::applicationDirPath();
}

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

class TestGroupNoteService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        ZIQGlobalization::setPreferredLanguage(QStringLiteral("en"));
        ZIQBaseChatViewController::registerKitCells();
        ZIQGroupNoteExtensionObserver::load();
    }

    void cleanup()
    {
        QDir(programDir() + "/ServiceTestBeside.bundle").removeRecursively();
        QFile::remove(programDir() + "/ServiceTestFile.bundle");
    }

    // Runs first: the single service is created by this load.
    void versionRecordWaitsForALogin()
    {
        GroupFixture group;
        V2VORManager client(group.server());
        V2VORManager::setSharedInstance(&client);
        ZIQGroupNoteService::load();
        QCoreApplication::processEvents();
        QVERIFY(client.writtenLogs().isEmpty());

        QTest::ignoreMessage(QtInfoMsg, "success");
        bool loggedIn = false;
        ZIQLogin::login(QStringLiteral("alice"), [&] { loggedIn = true; }, {});
        QTRY_VERIFY(loggedIn);
        QCOMPARE(client.writtenLogs().size(), 1);
        // Loaded while logged in, it writes at once.
        ZIQGroupNoteService::load();
        QCOMPARE(client.writtenLogs().size(), 2);

        const QString record = client.writtenLogs().last();
        QVERIFY2(record.contains("\n    \""), qPrintable(record)); // pretty-printed
        QJsonObject written = QJsonDocument::fromJson(record.toUtf8()).object();
        const QString content = written.take("logContent").toString();
        const QRegularExpression versionLine(QStringLiteral("^ZIQGroupNote version: %1, build: \\S+$")
                                                 .arg(QRegularExpression::escape(ZIQ_PROJECT_VERSION)));
        QVERIFY2(versionLine.match(content).hasMatch(), qPrintable(content));
        const QJsonObject expected { { "logLevel", 4 }, { "fileName", "ZIQGroupNote" },
            { "funcName", "logPluginVersion" }, { "lineNumber", 100 } };
        QCOMPARE(written, expected);
        QTest::ignoreMessage(QtInfoMsg, "success");
        QCoreApplication::processEvents();
        V2VORManager::setSharedInstance(nullptr);
    }

    void aRefusedWriteIsOnlyLogged()
    {
        GroupFixture group;
        group.actAs(QStringLiteral("carol"));
        group.server()->failNextCall(QStringLiteral("writeLog"), 6017, QStringLiteral("log is full"));
        QTest::ignoreMessage(QtWarningMsg, "errorCode:6017 errorMessage:log is full");
        ZIQGroupNoteService::logPluginVersion();
        QVERIFY(group.client(QStringLiteral("carol"))->writtenLogs().isEmpty());
        QCoreApplication::processEvents();
    }

    void theThemeFilesAreRegisteredForThePluginModule()
    {
        QVERIFY(ZIQThemeManager::shareManager()->themeValue(
            QStringLiteral("group_note_body_bg_color"), ZIQGroupNoteThemeModule));
    }

    void bundleLookup_data()
    {
        QTest::addColumn<QString>("bundle");
        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("expected"); // "@" stands for the program's folder
        const auto row = [](const char *name, const char *bundle, const char *module, const char *expected) {
            QTest::newRow(name) << QString(bundle) << QString(module) << QString(expected);
        };
        const char *const plugin = "ZIQGroupNoteService";
        row("compiled in", "ZIQGroupNote", plugin, ":/ZIQGroupNote.bundle");
        row("beside the program", "ServiceTestBeside", plugin, "@/ServiceTestBeside.bundle");
        row("a file is no bundle", "ServiceTestFile", plugin,
            "@/Frameworks/ZIQGroupNotePlugin.framework/ServiceTestFile.bundle");
    }

    void bundleLookup()
    {
        QFETCH(QString, bundle);
        QFETCH(QString, module);
        QFETCH(QString, expected);
        QVERIFY(QDir(programDir()).mkpath("ServiceTestBeside.bundle"));
        QFile file(programDir() + "/ServiceTestFile.bundle");
        QVERIFY(file.open(QIODevice::WriteOnly));
        ZIQGroupNoteBundle::PathCache cache;
        QCOMPARE(ZIQGroupNoteBundle::bundlePath(cache, bundle, module), expected.replace("@", programDir()));
    }

    void aCachedPathOutlivesItsFiles()
    {
        QVERIFY(QDir(programDir()).mkpath("ServiceTestBeside.bundle"));
        ZIQGroupNoteBundle::PathCache cache;
        const QString beside = programDir() + "/ServiceTestBeside.bundle";
        QCOMPARE(ZIQGroupNoteBundle::bundlePath(cache, "ServiceTestBeside", "VORConfig"), beside);
        QVERIFY(QDir(beside).removeRecursively());
        QCOMPARE(ZIQGroupNoteBundle::bundlePath(cache, "ServiceTestBeside", "VORConfig"), beside);
        // Another cache looks again.
        ZIQGroupNoteBundle::PathCache fresh;
        QCOMPARE(ZIQGroupNoteBundle::bundlePath(fresh, "ServiceTestBeside", "VORConfig"),
            programDir() + "/Frameworks/VORCommon.framework/ServiceTestBeside.bundle");
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
        QTest::newRow("group ID not a string") << classic << groupChat({ { groupKey, 42 } }) << false;
        QTest::newRow("filtered by number") << classic << groupChat({ { filterKey, 1 } }) << false;
        QTest::newRow("filter not a number") << classic << groupChat({ { filterKey, QStringLiteral("1") } }) << true;
        QTest::newRow("minimalist") << ZIQCore_ZIQChatExtension_InputViewMoreItem_MinimalistExtensionID << groupChat()
                                    << false;
    }

    void offeredOnlyInClassicGroupChats()
    {
        QFETCH(QString, extensionID);
        QFETCH(QVariantMap, param);
        QFETCH(bool, offered);
        const QList<ZIQExtensionInfo> items = ZIQCore::getExtensionList(extensionID, param);
        QCOMPARE(items.size(), offered ? 1 : 0);
        if (offered)
            QCOMPARE(items.first().text, QStringLiteral("Group Note"));
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
        if (editor) // a new note of this group
            QVERIFY(editor->isCreateNew() && editor->groupID() == group.groupID());
    }
};

QTEST_MAIN(TestGroupNoteService)
#include "tst_groupnoteservice.moc"
