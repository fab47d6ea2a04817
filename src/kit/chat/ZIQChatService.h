// The chat module's service in the kit core ("ZIQCore_ZIQChatService"): plug-ins register their
// custom message kinds through it, and send messages into the chat that is open. The outcome
// of a send asked of the service is announced as the chat's send-result event.
#pragma once

#include "kit/chat/ZIQChatMessageList.h"
#include "kit/core/ZIQServiceProtocol.h"

#include <QPointer>

class ZIQChatService : public ZIQServiceProtocol
{
public:
    static ZIQChatService *instance();
    /// Makes the service reachable through the kit core; the chat module does this at start.
    static void registerInCore();

    /// The chat the user has open, or null; the screens set it as chats appear and go.
    ZIQChatMessageList *currentChat() const { return m_currentChat; }
    void setCurrentChat(ZIQChatMessageList *chat) { m_currentChat = chat; }

    QVariant onCall(const QString &method, const QVariantMap &param) override;

    /// Registers a custom message kind from {"businessID", "TMessageCell_Name",
    /// "TMessageCell_Data_Name"}; false when a name is missing.
    bool appendCustomMessage(const QVariantMap &param);
    /// Shows and sends the message under "…_MsgKey" as the open chat sends; the result event
    /// follows later with the code and description. Returns the message ID it will carry.
    QString sendMessage(const QVariantMap &param);

private:
    ZIQChatService() = default;
    static void notifySendResult(int code, const QString &desc);

    QPointer<ZIQChatMessageList> m_currentChat;
};
