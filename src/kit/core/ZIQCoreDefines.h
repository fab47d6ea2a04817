// Names of the kit core's services, methods, events and extension points, shared by every
// module that talks through the core.
#pragma once

#include <QString>

// The chat module's service.
inline const QString ZIQCore_ZIQChatService = QStringLiteral("ZIQCore_ZIQChatService");
inline const QString ZIQCore_ZIQChatService_SendMessageMethod = QStringLiteral("ZIQCore_ZIQChatService_SendMessageMethod");
inline const QString ZIQCore_ZIQChatService_SendMessageMethod_MsgKey =
    QStringLiteral("ZIQCore_ZIQChatService_SendMessageMethod_MsgKey");
inline const QString ZIQCore_ZIQChatService_AppendCustomMessageMethod =
    QStringLiteral("ZIQCore_ZIQChatService_AppendCustomMessageMethod");

// Events of the chat module.
inline const QString ZIQCore_ZIQChatNotify = QStringLiteral("ZIQCore_ZIQChatNotify");
inline const QString ZIQCore_ZIQChatNotify_SendMessageSubKey = QStringLiteral("ZIQCore_ZIQChatNotify_SendMessageSubKey");
inline const QString ZIQCore_ZIQChatNotify_SendMessageSubKey_Code =
    QStringLiteral("ZIQCore_ZIQChatNotify_SendMessageSubKey_Code");
inline const QString ZIQCore_ZIQChatNotify_SendMessageSubKey_Desc =
    QStringLiteral("ZIQCore_ZIQChatNotify_SendMessageSubKey_Desc");

// Events of plug-ins.
inline const QString ZIQCore_ZIQPluginNotify = QStringLiteral("ZIQCore_ZIQPluginNotify");
inline const QString ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey =
    QStringLiteral("ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey");
inline const QString ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey_Message =
    QStringLiteral("ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey_Message");
inline const QString ZIQCore_ZIQPluginNotify_PluginCustomCellClick_Cell =
    QStringLiteral("ZIQCore_ZIQPluginNotify_PluginCustomCellClick_Cell");
inline const QString ZIQCore_ZIQPluginNotify_PluginCustomCellClick_PushVC =
    QStringLiteral("ZIQCore_ZIQPluginNotify_PluginCustomCellClick_PushVC");

// The chat input's "more" panel.
inline const QString ZIQCore_ZIQChatExtension_InputViewMoreItem_ClassicExtensionID =
    QStringLiteral("ZIQCore_ZIQChatExtension_InputViewMoreItem_ClassicExtensionID");
inline const QString ZIQCore_ZIQChatExtension_InputViewMoreItem_MinimalistExtensionID =
    QStringLiteral("ZIQCore_ZIQChatExtension_InputViewMoreItem_MinimalistExtensionID");
inline const QString ZIQCore_ZIQChatExtension_InputViewMoreItem_FilterGroupNote =
    QStringLiteral("ZIQCore_ZIQChatExtension_InputViewMoreItem_FilterGroupNote");
inline const QString ZIQCore_ZIQChatExtension_InputViewMoreItem_GroupID =
    QStringLiteral("ZIQCore_ZIQChatExtension_InputViewMoreItem_GroupID");
inline const QString ZIQCore_ZIQChatExtension_InputViewMoreItem_VC = QStringLiteral("ZIQCore_ZIQChatExtension_InputViewMoreItem_VC");
inline const QString ZIQCore_ZIQChatExtension_InputViewMoreItem_PushVC =
    QStringLiteral("ZIQCore_ZIQChatExtension_InputViewMoreItem_PushVC");
