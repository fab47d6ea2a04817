#include "kit/chat/ZIQChatMessageList.h"

#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatMessageSender.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "platform/MainQueue.h"
#include "sdk/V2VORManager.h"

#include <algorithm>

ZIQChatMessageList::ZIQChatMessageList(const ZIQChatConversation &conversation, V2VORManager *client, QObject *parent)
    : QObject(parent)
    , m_conversation(conversation)
    , m_client(client ? client : V2VORManager::sharedInstance())
{
    if (m_client)
        m_client->addAdvancedMsgListener(this);
    ZIQCore::registerEvent(ZIQCore_ZIQPluginNotify, ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey, this);
}

ZIQChatMessageList::~ZIQChatMessageList() = default;

ZIQMessageCellDataPtr ZIQChatMessageList::cellData(int row) const
{
    return row >= 0 && row < count() ? m_rows[size_t(row)].data : nullptr;
}

int ZIQChatMessageList::rowOfMessage(const QString &msgID) const
{
    auto position = m_positionOfMsgID.constFind(msgID);
    return position == m_positionOfMsgID.constEnd() ? -1 : int(*position - m_topPosition);
}

void ZIQChatMessageList::loadMessages(int pageSize)
{
    if (m_loading)
        return;
    if (!m_client) {
        platform::MainQueue::async(this, [this] { Q_EMIT loadFinished(-1, QStringLiteral("no messaging client")); });
        return;
    }
    m_loading = true;
    const V2VORMessagePtr oldest = m_rows.empty() ? nullptr : m_rows.front().data->innerMessage();
    QPointer<ZIQChatMessageList> self(this);
    auto succ = [self, pageSize](const QList<V2VORMessagePtr> &newestFirst) {
        if (!self)
            return;
        self->m_loading = false;
        self->m_hasMore = newestFirst.size() >= pageSize;
        QList<V2VORMessagePtr> page;
        for (const V2VORMessagePtr &message : newestFirst) {
            if (self->rowOfMessage(message->msgID()) < 0)
                page.prepend(message);
        }
        self->insertRows(true, page);
        self->fetchReactions(page);
        self->markRead();
        Q_EMIT self->loadFinished(0, {});
    };
    auto fail = [self](int code, const QString &desc) {
        if (!self)
            return;
        self->m_loading = false;
        Q_EMIT self->loadFinished(code, desc);
    };
    if (m_conversation.isGroup())
        m_client->getGroupHistoryMessageList(m_conversation.groupID, pageSize, oldest, succ, fail);
    else
        m_client->getC2CHistoryMessageList(m_conversation.userID, pageSize, oldest, succ, fail);
}

QSizeF ZIQChatMessageList::contentSize(int row)
{
    if (row < 0 || row >= count())
        return {};
    Row &measured = m_rows[size_t(row)];
    if (!measured.measured) {
        measured.size = ZIQChatClassRegistry::instance().contentSizeOf(measured.data);
        measured.measured = true;
    }
    return measured.size;
}

bool ZIQChatMessageList::needsMeasure(int row) const
{
    return row >= 0 && row < count() && !m_rows[size_t(row)].measured;
}

void ZIQChatMessageList::invalidateSize(int row)
{
    if (row < 0 || row >= count())
        return;
    m_rows[size_t(row)].measured = false;
    Q_EMIT rowSizeInvalidated(row);
}

QString ZIQChatMessageList::sendMessage(
    const V2VORMessagePtr &message, const ZIQSendMessageAppendParams &params, V2VORSucc succ, V2VORFail fail)
{
    const ZIQChatConversation target
        = message ? ZIQChatMessageSender::targetOf(*message, m_conversation) : m_conversation;
    QPointer<ZIQChatMessageList> self(this);
    // The messaging client updates the message object itself; its row only needs redrawing.
    auto redraw = [self, message] {
        if (!self)
            return;
        auto row = std::find_if(
            self->m_rows.begin(), self->m_rows.end(), [&](const Row &r) { return r.data->innerMessage() == message; });
        if (row != self->m_rows.end())
            self->changeRow(int(row - self->m_rows.begin()), false);
    };
    const QString msgID = ZIQChatMessageSender::send(
        m_client, message, target, params,
        [redraw, succ] {
            redraw();
            if (succ)
                succ();
        },
        [redraw, fail](int code, const QString &desc) {
            redraw();
            if (fail)
                fail(code, desc);
        });
    if (message && target == m_conversation) {
        message->setIsSelf(true);
        if (m_client)
            message->setSender(m_client->getLoginUser());
        appendMessage(message);
    }
    return msgID;
}

QString ZIQChatMessageList::sendTextMessage(const QString &text, V2VORSucc succ, V2VORFail fail)
{
    const V2VORMessagePtr message = m_client ? m_client->createTextMessage(text) : nullptr;
    // Members react to a message through its extensions, so the message must carry them.
    if (message)
        message->setSupportMessageExtension(true);
    ZIQSendMessageAppendParams params;
    params.isSendPushInfo = true;
    return sendMessage(message, params, std::move(succ), std::move(fail));
}

void ZIQChatMessageList::onRecvNewMessage(const V2VORMessagePtr &message)
{
    if (!message || !m_conversation.contains(*message))
        return;
    const int row = rowOfMessage(message->msgID());
    if (row >= 0) {
        m_rows[size_t(row)].data->setInnerMessage(message);
        changeRow(row, true);
        return;
    }
    appendMessage(message);
    if (!message->isSelf())
        markRead();
}

void ZIQChatMessageList::onRecvMessageModified(const V2VORMessagePtr &message)
{
    const int row = message ? rowOfMessage(message->msgID()) : -1;
    if (row < 0)
        return;
    m_rows[size_t(row)].data->setInnerMessage(message);
    changeRow(row, true);
}

void ZIQChatMessageList::onNotifyEvent(const QString &key, const QString &subKey, QObject *, const QVariantMap &param)
{
    if (key != ZIQCore_ZIQPluginNotify || subKey != ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey)
        return;
    const auto message
        = param.value(ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey_Message).value<V2VORMessagePtr>();
    if (message)
        invalidateSize(rowOfMessage(message->msgID()));
}

void ZIQChatMessageList::insertRows(bool onTop, const QList<V2VORMessagePtr> &messages)
{
    if (messages.isEmpty())
        return;
    const int first = onTop ? 0 : count();
    if (onTop)
        m_topPosition -= messages.size();
    std::vector<Row> rows;
    rows.reserve(size_t(messages.size()));
    for (const V2VORMessagePtr &message : messages) {
        if (!message->msgID().isEmpty())
            m_positionOfMsgID.insert(message->msgID(), m_topPosition + first + qint64(rows.size()));
        rows.push_back({ ZIQChatClassRegistry::instance().cellDataForMessage(message), {}, false });
    }
    m_rows.insert(m_rows.begin() + first, std::make_move_iterator(rows.begin()), std::make_move_iterator(rows.end()));
    Q_EMIT rowsInserted(first, int(messages.size()));
}

void ZIQChatMessageList::appendMessage(const V2VORMessagePtr &message)
{
    insertRows(false, { message });
}

void ZIQChatMessageList::changeRow(int row, bool sizeChanged)
{
    if (sizeChanged)
        invalidateSize(row);
    Q_EMIT rowChanged(row);
}

void ZIQChatMessageList::markRead()
{
    if (!m_client)
        return;
    if (m_conversation.isGroup())
        m_client->markGroupMessageAsRead(m_conversation.groupID, {}, {});
    else
        m_client->markC2CMessageAsRead(m_conversation.userID, {}, {});
}
