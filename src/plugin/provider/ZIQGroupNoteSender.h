// Posts a session's note and tips messages: through the kit's chat service when one is registered
// (it shows the message in the open chat, sends it and answers with its send-result event), else
// straight through the messaging client to the message's own group.
//
// The chat service's answer names no message, so it is taken as the answer to whatever send is
// pending. A sender waiting for that answer keeps itself alive until it comes, so a note posted
// from a screen that closed at once still gets its entries written afterwards.
#pragma once

#include "kit/chat/ZIQSendMessageAppendParams.h"
#include "kit/core/ZIQNotifyProtocol.h"
#include "plugin/provider/ZIQGroupNoteEditingSession.h"
#include "sdk/V2VOROfflinePushInfo.h"

#include <functional>
#include <memory>

class ZIQGroupNoteSender : public ZIQNotifyProtocol, public std::enable_shared_from_this<ZIQGroupNoteSender>
{
public:
    using SendSucc = std::function<void()>;
    using SendFail = std::function<void(int code, const QString &desc)>;

    /// Sends as the user of the session's context, through its client; listens for the chat
    /// service's send-result event from now on.
    explicit ZIQGroupNoteSender(std::shared_ptr<ZIQGroupNoteEditingSession> session);
    ~ZIQGroupNoteSender() override;

    /// The callbacks of a send through the chat service still waiting for its result event.
    const SendSucc &sendNoteMessageSucc() const { return m_sendNoteMessageSucc; }
    const SendFail &sendNoteMessageFail() const { return m_sendNoteMessageFail; }

    /// Posts the session's note as a new message, which the session works on from then on.
    void sendGroupNoteMessageToGroup(const QString &groupID, SendSucc succ, SendFail fail);
    /// Tells the group of a change with a copy of the note's body pointing at its first message.
    void sendNoteNotifyMessageToGroup(const QString &groupID, SendSucc succ, SendFail fail);
    void sendNoteMessage(const V2VORMessagePtr &message, SendSucc succ, SendFail fail);
    void sendMessageByZIQChat(const V2VORMessagePtr &message);
    void sendMessageByHALVEX(const V2VORMessagePtr &message, const QString &groupID, SendSucc succ, SendFail fail);
    QString sendMessage(const V2VORMessagePtr &message, const QString &groupID,
        const ZIQSendMessageAppendParams &appendParams, V2VORProgress progress, SendSucc succ, SendFail fail);
    /// The offline push a message to `groupID` from the kit's logged-in user would carry.
    static V2VOROfflinePushInfo offlinePushInfo(const QString &groupID);

    void onNotifyEvent(const QString &key, const QString &subKey, QObject *object, const QVariantMap &param) override;

    /// The screen is gone: once no answer is awaited, nothing is kept for one any more.
    void detach();

private:
    V2VORManager *manager() const;
    V2VORMessagePtr createNoteMessage(const QByteArray &body, const QString &groupID, const SendFail &fail) const;
    void forgetLeftoverCallbacks();

    std::shared_ptr<ZIQGroupNoteEditingSession> m_session;
    SendSucc m_sendNoteMessageSucc;
    SendFail m_sendNoteMessageFail;
    /// Set while a send through the chat service awaits its answer.
    std::shared_ptr<ZIQGroupNoteSender> m_awaitingAnswer;
    bool m_detached = false;
};
