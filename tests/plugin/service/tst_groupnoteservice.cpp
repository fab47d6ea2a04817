// The plug-in's start-up over real clients: the version record reaches the messaging client's
// log at once or after the next login, the two message kinds reach the chat service in order,
// the theme files are found, and bundles are looked up in the program, beside it, then in the
// module's framework folder, each cache keeping its answer.
#include "support/GroupFixture.h"

#include "kit/chat/ZIQChatService.h"
#include "kit/common/ZIQLogin.h"
#include "kit/common/ZIQThemeManager.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "kit/core/ZIQServiceProtocol.h"
#include "platform/NotificationCenter.h"
#include "plugin/service/ZIQGroupNoteBundle.h"
#include "plugin/service/ZIQGroupNoteDefines.h"
#include "plugin/service/ZIQGroupNoteService.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

namespace {

/// Stands in for the chat module's service and keeps every call it gets.
struct RecordingChatService : ZIQServiceProtocol
{
    RecordingChatService() { ZIQCore::registerService(ZIQCore_ZIQChatService, this); }
    ~RecordingChatService() override { ZIQChatService::registerInCore(); }
    QVariant onCall(const QString &method, const QVariantMap &param) override
    {
        calls.append({ method, param });
        return {};
    }
    QList<QPair<QString, QVariantMap>> calls;
};

QVariantMap kind(const char *businessID, const char *cell, const char *data)
{
    return { { "businessID", businessID }, { "TMessageCell_Name", cell }, { "TMessageCell_Data_Name", data } };
}

QString programDir()
{
    return QCoreApplication::applicationDirPath();
}

} // namespace

class TestGroupNoteService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { ZIQChatService::registerInCore(); }

    void cleanup()
    {
        QDir(programDir() + "/ServiceTestBeside.bundle").removeRecursively();
        QFile::remove(programDir() + "/ServiceTestFile.bundle");
    }

    // Runs first: the single service is created by this load.
    void versionRecordWaitsForTheFirstLogin()
    {
        GroupFixture group;
        V2VORManager loggedOut(group.server());
        V2VORManager::setSharedInstance(&loggedOut);
        ZIQGroupNoteService::load();
        QCoreApplication::processEvents();
        QVERIFY(loggedOut.writtenLogs().isEmpty());

        QTest::ignoreMessage(QtInfoMsg, "success");
        bool loggedIn = false;
        ZIQLogin::login(QStringLiteral("alice"), [&] { loggedIn = true; }, {});
        QTRY_VERIFY(loggedIn);
        QCOMPARE(loggedOut.writtenLogs().size(), 1);
        QCoreApplication::processEvents();
        V2VORManager::setSharedInstance(nullptr);
    }

    void versionRecordIsWrittenAtOnceWhenLoggedIn()
    {
        GroupFixture group;
        group.actAs(QStringLiteral("bob"));
        V2VORManager *client = group.client(QStringLiteral("bob"));
        ZIQGroupNoteService::load();
        QCOMPARE(client->writtenLogs().size(), 1);
        // Every later login writes it again.
        platform::NotificationCenter::defaultCenter().post(ZIQLoginSuccessNotification);
        QCOMPARE(client->writtenLogs().size(), 2);

        const QString record = client->writtenLogs().last();
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
        QTest::ignoreMessage(QtInfoMsg, "success");
        QCoreApplication::processEvents();
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

    void bothMessageKindsReachTheChatServiceNoteFirst()
    {
        RecordingChatService chat;
        ZIQGroupNoteService::sharedInstance()->registerCustomMessageCell();
        const QList<QPair<QString, QVariantMap>> expected {
            { ZIQCore_ZIQChatService_AppendCustomMessageMethod,
                kind("group_note", "ZIQGroupNoteContainerCell", "ZIQGroupNoteContainerCellData") },
            { ZIQCore_ZIQChatService_AppendCustomMessageMethod,
                kind("group_note_tips", "ZIQGroupNoteTipsCell", "ZIQGroupNoteTipsCellData") },
        };
        QCOMPARE(chat.calls, expected);
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
        row("the common bundle", "VORCommon", "VORConfig", ":/VORCommon.bundle");
        row("beside the program", "ServiceTestBeside", plugin, "@/ServiceTestBeside.bundle");
        row("a file is no bundle", "ServiceTestFile", plugin,
            "@/Frameworks/ZIQGroupNotePlugin.framework/ServiceTestFile.bundle");
        row("plug-in framework", "ServiceTestNowhere", plugin,
            "@/Frameworks/ZIQGroupNotePlugin.framework/ServiceTestNowhere.bundle");
        row("common framework", "ServiceTestNowhere", "VORConfig",
            "@/Frameworks/VORCommon.framework/ServiceTestNowhere.bundle");
        row("module not in the table", "ServiceTestNowhere", "NoSuchService",
            "@/Frameworks/.framework/ServiceTestNowhere.bundle");
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
};

QTEST_MAIN(TestGroupNoteService)
#include "tst_groupnoteservice.moc"
