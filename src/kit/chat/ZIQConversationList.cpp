#include "kit/chat/ZIQConversationList.h"

#include "kit/chat/ZIQChatClassRegistry.h"
#include "platform/MainQueue.h"

#include <algorithm>
#include <numeric>

ZIQConversationList::ZIQConversationList(V2VORManager *client, QObject *parent)
    : QObject(parent)
    , m_client(client ? client : V2VORManager::sharedInstance())
{
    if (m_client)
        m_client->addConversationListener(this);
}

void ZIQConversationList::load()
{
    if (!m_client) {
        platform::MainQueue::async(this, [this] { Q_EMIT loadFinished(-1, QStringLiteral("no messaging client")); });
        return;
    }
    QPointer<ZIQConversationList> self(this);
    m_client->getConversationList(
        [self](const QList<V2VORConversation> &conversations) {
            if (!self)
                return;
            self->m_rows.clear();
            for (const V2VORConversation &conversation : conversations)
                self->m_rows.append(cellDataOf(conversation));
            self->sortRows();
            Q_EMIT self->listChanged();
            Q_EMIT self->loadFinished(0, {});
        },
        [self](int code, const QString &desc) {
            if (self)
                Q_EMIT self->loadFinished(code, desc);
        });
}

int ZIQConversationList::rowOf(const QString &conversationID) const
{
    auto found = std::find_if(m_rows.cbegin(), m_rows.cend(),
        [&](const ZIQConversationCellData &row) { return row.conversationID == conversationID; });
    return found == m_rows.cend() ? -1 : int(found - m_rows.cbegin());
}

int ZIQConversationList::totalUnreadCount() const
{
    return std::accumulate(m_rows.cbegin(), m_rows.cend(), 0,
        [](int sum, const ZIQConversationCellData &row) { return sum + row.unreadCount; });
}

ZIQChatConversation ZIQConversationList::openConversation(int row)
{
    if (row < 0 || row >= count())
        return {};
    const ZIQChatConversation conversation = m_rows.at(row).conversation;
    if (m_client && m_rows.at(row).unreadCount > 0) {
        if (conversation.isGroup())
            m_client->markGroupMessageAsRead(conversation.groupID, {}, {});
        else
            m_client->markC2CMessageAsRead(conversation.userID, {}, {});
    }
    return conversation;
}

void ZIQConversationList::onConversationChanged(const QList<V2VORConversation> &conversations)
{
    for (const V2VORConversation &conversation : conversations) {
        const int row = rowOf(conversation.conversationID);
        if (row >= 0)
            m_rows[row] = cellDataOf(conversation);
        else
            m_rows.append(cellDataOf(conversation));
    }
    sortRows();
    Q_EMIT listChanged();
}

ZIQConversationCellData ZIQConversationList::cellDataOf(const V2VORConversation &conversation)
{
    ZIQConversationCellData data;
    data.conversationID = conversation.conversationID;
    data.conversation = { conversation.groupID, conversation.userID };
    data.title = conversation.showName;
    data.faceURL = conversation.faceURL;
    data.lastMessage = conversation.lastMessage;
    data.subTitle = ZIQChatClassRegistry::instance().displayStringForMessage(conversation.lastMessage);
    data.time = conversation.lastMessage ? conversation.lastMessage->timestamp() : 0;
    data.unreadCount = conversation.unreadCount;
    data.orderKey = conversation.orderKey;
    return data;
}

void ZIQConversationList::sortRows()
{
    std::stable_sort(m_rows.begin(), m_rows.end(),
        [](const ZIQConversationCellData &a, const ZIQConversationCellData &b) { return a.orderKey > b.orderKey; });
}
