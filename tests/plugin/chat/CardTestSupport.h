// Shared pieces of the note card's tests: the note row registered with the chat as the plug-in
// service registers it, a chat screen of the device's user on a navigation stack, and a
// recorder of the card's size-change events.
#pragma once

#include "../provider/ProviderTestSupport.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatMessageList.h"
#include "kit/core/ZIQNotifyProtocol.h"
#include "platform/NavigationController.h"
#include "platform/TableView.h"
#include "plugin/chat/ZIQGroupNoteContainerCell.h"
#include "plugin/chat/ZIQGroupNoteContainerCellData.h"
#include "plugin/chat/ZIQGroupNotePreviewViewController.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"

inline void registerNoteRow()
{
    auto &registry = ZIQChatClassRegistry::instance();
    registry.registerCellDataClass<ZIQGroupNoteContainerCellData>();
    registry.registerCellClass<ZIQGroupNoteContainerCell>();
    registry.appendCustomMessage(
        ZIQGroupNoteMessageBody::noteBusinessID, "ZIQGroupNoteContainerCell", "ZIQGroupNoteContainerCellData");
    ZIQBaseChatViewController::registerKitCells();
}

/// The messages whose rows a card asked the chat to measure again.
struct SizeChanges : ZIQNotifyProtocol
{
    SizeChanges() { ZIQCore::registerEvent(ZIQCore_ZIQPluginNotify, ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey, this); }
    ~SizeChanges() override { ZIQCore::unRegisterEventByObject(this); }
    void onNotifyEvent(const QString &, const QString &, QObject *, const QVariantMap &param) override
    {
        const auto message
            = param.value(ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey_Message).value<V2VORMessagePtr>();
        msgIDs.append(message ? message->msgID() : QString());
    }
    QStringList msgIDs;
};

/// `user`'s group chat on a navigation stack in a phone-sized window, `user` being the device's
/// user, with its history loaded.
struct NoteChat
{
    NoteChat(Scene &scene, const QString &user)
    {
        scene.group.actAs(user);
        chat = new ZIQBaseChatViewController(ZIQChatConversation { scene.group.groupID(), {} }, scene.group.client(user));
        navigation = std::make_unique<platform::NavigationController>(chat);
        navigation->view()->resize(375, 812);
        navigation->view()->show();
    }
    ZIQChatMessageList *list() const { return chat->messageList(); }
    int rowOf(const QString &msgID) const { return list()->rowOfMessage(msgID); }
    /// The drawn note row of `msgID`, once the history holds it and its card has its note.
    ZIQGroupNoteContainerCell *noteCell(const QString &msgID) const
    {
        if (!QTest::qWaitFor([&] { return rowOf(msgID) >= 0; }, 5000))
            return nullptr;
        chat->tableView()->scrollToRow({ 0, rowOf(msgID) }, platform::TableView::ScrollPosition::Middle, false);
        return qobject_cast<ZIQGroupNoteContainerCell *>(chat->tableView()->cellForRow({ 0, rowOf(msgID) }));
    }

    ZIQBaseChatViewController *chat = nullptr;
    std::unique_ptr<platform::NavigationController> navigation;
};

/// Rows the card's table shows.
inline int shownRows(ZIQGroupNotePreviewViewController *card)
{
    return card->itemsTableView()->numberOfRows(0);
}
