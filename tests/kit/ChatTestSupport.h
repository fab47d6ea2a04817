// A plug-in's message kind as tests register it, a recorder of kit events, a "more" panel
// provider, and the waits the chat tests share.
#pragma once

#include "kit/chat/ZIQBubbleMessageCellData.h"
#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatMessageList.h"
#include "kit/chat/ZIQChatService.h"
#include "kit/common/ZIQTool.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "kit/core/ZIQExtensionProtocol.h"
#include "kit/core/ZIQNotifyProtocol.h"

#include <QJsonObject>
#include <QSizeF>
#include <QTest>

/// A sign-up sheet's cell data: its body says how many lines it shows; a "broken" body cannot
/// be read.
class SheetCellData : public ZIQBubbleMessageCellData
{
    Q_OBJECT

public:
    using ZIQBubbleMessageCellData::ZIQBubbleMessageCellData;

    static std::shared_ptr<SheetCellData> getCellData(const V2VORMessagePtr &message)
    {
        const QJsonObject body = ZIQTool::jsonData2Dictionary(message->customElem()->data);
        if (body.value("broken").toBool())
            return nullptr;
        return std::make_shared<SheetCellData>(directionOf(*message));
    }
    static QString getDisplayString(const V2VORMessagePtr &) { return QStringLiteral("[Sheet]"); }
    static bool canForward() { return false; }
};

/// Its cell: 40 points a line, 240 wide.
class SheetCell : public QObject
{
    Q_OBJECT

public:
    static QSizeF getContentSize(ZIQMessageCellData *data)
    {
        const QJsonObject body = ZIQTool::jsonData2Dictionary(data->innerMessage()->customElem()->data);
        return QSizeF(240, 40 * body.value("lines").toInt(1));
    }
};

struct EventRecorder : ZIQNotifyProtocol
{
    void onNotifyEvent(const QString &key, const QString &subKey, QObject *, const QVariantMap &param) override
    {
        events.append({ key + QLatin1Char('/') + subKey, param });
    }
    QList<QPair<QString, QVariantMap>> events;
};

/// The "more" panel's provider: one item in group chats, none elsewhere; keeps what it was
/// asked with and what a tap handed over.
struct MoreProvider : ZIQExtensionProtocol
{
    QList<ZIQExtensionInfo> onGetExtension(const QString &, const QVariantMap &param) override
    {
        asked = param;
        if (param.value(ZIQCore_ZIQChatExtension_InputViewMoreItem_GroupID).toString().isEmpty())
            return {};
        ZIQExtensionInfo item;
        item.weight = 300;
        item.text = QStringLiteral("Poll");
        item.onClicked = [this](const QVariantMap &tapped) { this->tapped = tapped; };
        return { item };
    }
    QVariantMap asked;
    QVariantMap tapped;
};

inline QByteArray sheetBody(int lines, const QString &businessID = QStringLiteral("sheet"))
{
    return QStringLiteral(R"({"businessID":"%1","lines":%2})").arg(businessID).arg(lines).toUtf8();
}

/// Registers a custom message kind through the chat service, as a plug-in does at load.
inline bool appendKind(const QString &businessID, const QString &cell, const QString &data)
{
    return ZIQCore::callService(ZIQCore_ZIQChatService, ZIQCore_ZIQChatService_AppendCustomMessageMethod,
        { { "businessID", businessID }, { "TMessageCell_Name", cell }, { "TMessageCell_Data_Name", data } })
        .toBool();
}

/// The sheet's classes under their names, and its kind under "sheet".
inline bool registerSheetKind()
{
    ZIQChatClassRegistry::instance().registerCellDataClass<SheetCellData>();
    ZIQChatClassRegistry::instance().registerCellClass<SheetCell>();
    ZIQChatService::registerInCore();
    return appendKind("sheet", "SheetCell", "SheetCellData");
}

/// Loads a list's first page and waits for it.
inline bool loadAndWait(ZIQChatMessageList &list, int count = 20)
{
    bool done = false;
    auto connection = QObject::connect(&list, &ZIQChatMessageList::loadFinished, &list, [&] { done = true; });
    list.loadMessages(count);
    const bool arrived = QTest::qWaitFor([&] { return done; }, 5000);
    QObject::disconnect(connection);
    return arrived;
}
