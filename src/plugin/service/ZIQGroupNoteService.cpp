#include "plugin/service/ZIQGroupNoteService.h"

#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/common/ZIQLogin.h"
#include "kit/common/ZIQThemeManager.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "platform/NotificationCenter.h"
#include "plugin/chat/ZIQGroupNoteContainerCell.h"
#include "plugin/chat/ZIQGroupNoteContainerCellData.h"
#include "plugin/chat/ZIQGroupNoteTipsCell.h"
#include "plugin/chat/ZIQGroupNoteTipsCellData.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"
#include "plugin/provider/ZIQGroupNoteLog.h"
#include "plugin/service/ZIQGroupNoteBundle.h"
#include "plugin/service/ZIQGroupNoteDefines.h"
#include "plugin/service/ZIQGroupNoteVersion.h"
#include "sdk/V2VORManager.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

struct CustomMessageKind
{
    QString businessID;
    QString cellName;
    QString cellDataName;
};

QList<CustomMessageKind> customMessageKinds()
{
    return {
        { ZIQGroupNoteMessageBody::noteBusinessID, QStringLiteral("ZIQGroupNoteContainerCell"),
            QStringLiteral("ZIQGroupNoteContainerCellData") },
        { ZIQGroupNoteMessageBody::tipsBusinessID, QStringLiteral("ZIQGroupNoteTipsCell"),
            QStringLiteral("ZIQGroupNoteTipsCellData") },
    };
}

/// The record the messaging client's log takes: level, source place and the text.
QString versionRecord()
{
    const QString text
        = QStringLiteral("ZIQGroupNote version: %1, build: %2").arg(ZIQGroupNoteShortVersion, ZIQGroupNoteBuildVersion);
    const QJsonObject record {
        { QStringLiteral("logLevel"), 4 },
        { QStringLiteral("fileName"), QStringLiteral("ZIQGroupNote") },
        { QStringLiteral("funcName"), QStringLiteral("logPluginVersion") },
        { QStringLiteral("lineNumber"), 100 },
        { QStringLiteral("logContent"), text },
    };
    return QString::fromUtf8(QJsonDocument(record).toJson(QJsonDocument::Indented));
}

} // namespace

void ZIQGroupNoteService::load()
{
    ZIQGroupNoteLog::info("ZIQGroupNoteService load");
    sharedInstance();
    static ZIQGroupNoteBundle::PathCache themeBundleCache;
    const QString themePath
        = ZIQGroupNoteBundle::bundlePath(themeBundleCache, ZIQGroupNoteThemeBundleName, ZIQGroupNoteServiceName);
    ZIQThemeManager::shareManager()->registerThemeResourcePath(themePath, ZIQGroupNoteThemeModule);
    const V2VORManager *client = V2VORManager::sharedInstance();
    if (client && client->getLoginStatus() == V2VOR_STATUS_LOGINED)
        logPluginVersion();
}

ZIQGroupNoteService *ZIQGroupNoteService::sharedInstance()
{
    // Created once, safely from any thread; lives as long as the process.
    static ZIQGroupNoteService *service = new ZIQGroupNoteService;
    return service;
}

ZIQGroupNoteService::ZIQGroupNoteService()
{
    platform::NotificationCenter::defaultCenter().addObserver(
        this, ZIQLoginSuccessNotification, [this](const platform::Notification &) { onLoginSucceeded(); });
    registerCustomMessageCell();
}

void ZIQGroupNoteService::registerCustomMessageCell()
{
    // The chat finds C++ classes by their class names; the names below must resolve there.
    ZIQChatClassRegistry &classes = ZIQChatClassRegistry::instance();
    classes.registerCellDataClass<ZIQGroupNoteContainerCellData>();
    classes.registerCellClass<ZIQGroupNoteContainerCell>();
    classes.registerCellDataClass<ZIQGroupNoteTipsCellData>();
    classes.registerCellClass<ZIQGroupNoteTipsCell>();

    for (const CustomMessageKind &kind : customMessageKinds()) {
        ZIQCore::callService(ZIQCore_ZIQChatService, ZIQCore_ZIQChatService_AppendCustomMessageMethod,
            { { QStringLiteral("businessID"), kind.businessID }, { QStringLiteral("TMessageCell_Name"), kind.cellName },
                { QStringLiteral("TMessageCell_Data_Name"), kind.cellDataName } });
    }
}

void ZIQGroupNoteService::onLoginSucceeded()
{
    logPluginVersion();
}

void ZIQGroupNoteService::logPluginVersion()
{
    V2VORManager *client = V2VORManager::sharedInstance();
    if (!client)
        return;
    client->callExperimentalAPI(
        QStringLiteral("writeLog"), versionRecord(), [](const QVariant &) { ZIQGroupNoteLog::info("success"); },
        [](int code, const QString &desc) { ZIQGroupNoteLog::warning("errorCode:%d errorMessage:%@", code, desc); });
}
