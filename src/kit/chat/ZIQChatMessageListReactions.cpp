// The message list's side of reactions: reading them with a page of history, following their
// changes, and writing the current user's own.
#include "kit/chat/ZIQChatMessageList.h"

#include "kit/chat/ZIQMessageReactions.h"
#include "platform/MainQueue.h"
#include "sdk/V2VORErrorCode.h"
#include "sdk/V2VORManager.h"

void ZIQChatMessageList::fetchReactions(const QList<V2VORMessagePtr> &messages)
{
    QPointer<ZIQChatMessageList> self(this);
    for (const V2VORMessagePtr &message : messages) {
        if (!m_client || !message->supportMessageExtension() || message->status() != V2VOR_MSG_STATUS_SEND_SUCC)
            continue;
        const QString msgID = message->msgID();
        m_client->getMessageExtensions(message,
            [self, msgID](const QList<V2VORMessageExtension> &extensions) {
                if (!self)
                    return;
                self->updateReactions(msgID, [&](ZIQMessageReactions &reactions) {
                    const ZIQMessageReactions read = ZIQMessageReactions::fromExtensions(extensions);
                    return std::exchange(reactions, read) != read;
                });
            },
            {});
    }
}

void ZIQChatMessageList::onRecvMessageExtensionsChanged(
    const QString &msgID, const QList<V2VORMessageExtension> &extensions)
{
    updateReactions(msgID, [&](ZIQMessageReactions &reactions) { return reactions.apply(extensions); });
}

void ZIQChatMessageList::onRecvMessageExtensionsDeleted(const QString &msgID, const QStringList &extensionKeys)
{
    updateReactions(msgID, [&](ZIQMessageReactions &reactions) { return reactions.remove(extensionKeys); });
}

void ZIQChatMessageList::updateReactions(const QString &msgID, const std::function<bool(ZIQMessageReactions &)> &change)
{
    const int row = rowOfMessage(msgID);
    if (row < 0)
        return;
    ZIQMessageCellData &data = *m_rows[size_t(row)].data;
    ZIQMessageReactions reactions = data.reactions();
    if (!change(reactions))
        return;
    data.setReactions(reactions);
    changeRow(row, true);
}

void ZIQChatMessageList::setReaction(const QString &msgID, const QString &emoji, V2VORSucc succ, V2VORFail fail)
{
    const ZIQMessageCellDataPtr data = cellData(rowOfMessage(msgID));
    if (!data || !m_client) {
        if (fail)
            platform::MainQueue::async(this, [fail] { fail(-1, QStringLiteral("no such message in this chat")); });
        return;
    }
    writeReaction(data->innerMessage(), emoji, true, std::move(succ), std::move(fail));
}

void ZIQChatMessageList::writeReaction(
    const V2VORMessagePtr &message, const QString &emoji, bool retryConflict, V2VORSucc succ, V2VORFail fail)
{
    const QString key = ZIQMessageReactions::keyOf(m_client->getLoginUser());
    QPointer<ZIQChatMessageList> self(this);
    auto answer = [=](const QList<V2VORMessageExtensionResult> &results) {
        const V2VORMessageExtensionResult result = results.value(0);
        // A conflict means this client had not seen its own key's latest version (written
        // from another device); the answer taught it, so one more try goes through.
        if (result.resultCode == V2VOR_ERR_EXTENSION_VERSION_CONFLICT && retryConflict && self)
            return self->writeReaction(message, emoji, false, succ, fail);
        if (result.resultCode != V2VOR_SUCC) {
            if (fail)
                fail(result.resultCode, result.resultInfo);
        } else if (succ) {
            succ();
        }
    };
    if (emoji.isEmpty())
        m_client->deleteMessageExtensions(message, { key }, answer, fail);
    else
        m_client->setMessageExtensions(message, { { key, emoji } }, answer, fail);
}
