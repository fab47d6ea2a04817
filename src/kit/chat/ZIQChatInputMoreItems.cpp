#include "kit/chat/ZIQChatInputMoreItems.h"

#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"

QList<ZIQExtensionInfo> ZIQChatInputMoreItems::getItems(const ZIQChatInputMoreItemQuery &query)
{
    // The core already orders the items by weight.
    return ZIQCore::getExtensionList(extensionID(query), parameters(query));
}

QString ZIQChatInputMoreItems::extensionID(const ZIQChatInputMoreItemQuery &query)
{
    return query.isMinimalist ? ZIQCore_ZIQChatExtension_InputViewMoreItem_MinimalistExtensionID
                              : ZIQCore_ZIQChatExtension_InputViewMoreItem_ClassicExtensionID;
}

QVariantMap ZIQChatInputMoreItems::parameters(const ZIQChatInputMoreItemQuery &query)
{
    return {
        { ZIQCore_ZIQChatExtension_InputViewMoreItem_GroupID, query.groupID },
        { ZIQCore_ZIQChatExtension_InputViewMoreItem_FilterGroupNote, query.filterGroupNote },
        { ZIQCore_ZIQChatExtension_InputViewMoreItem_VC, QVariant::fromValue<QObject *>(query.chatScreen.data()) },
        { ZIQCore_ZIQChatExtension_InputViewMoreItem_PushVC,
            QVariant::fromValue<QObject *>(query.navigationController.data()) },
    };
}
