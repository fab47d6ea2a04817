// The service's conversations as each member sees them: the list ordered by latest activity,
// read marks and unread counts, one-to-one history, group profiles, and the conversation
// events that keep every member's list current.
#include "sdk/MessagingServerPrivate.h"

#include "platform/MainQueue.h"
#include "sdk/ServiceRules.h"

#include <algorithm>

ServiceReply<QList<V2VORMessagePtr>> MessagingServer::Private::historyOf(
    const QString &conversation, const QString &userID, int count, quint64 beforeSeq) const
{
    const QStringList &ids = conversations.value(conversation).messageIDs;
    QList<V2VORMessagePtr> found;
    qsizetype index = beforeSeq == 0 ? ids.size() : std::min<qsizetype>(beforeSeq - 1, ids.size());
    while (--index >= 0 && found.size() < count)
        found.append(copyFor(ids.at(index), userID));
    return { {}, found };
}

ServiceReply<QList<V2VORMessagePtr>> MessagingServer::Private::directHistory(
    const QString &userID, const QString &peerID, int count, quint64 beforeSeq) const
{
    if (peerID.isEmpty() || !users.contains(peerID))
        return { ServiceRules::userNotFound(peerID) };
    return historyOf(ServiceRules::directConversationKey(userID, peerID), userID, count, beforeSeq);
}

V2VORConversation MessagingServer::Private::conversationAs(const QString &key, const QString &viewer) const
{
    const Conversation &conversation = conversations[key];
    V2VORConversation seen = ServiceRules::conversationAs(
        { key, conversation.isGroup, conversation.members, conversation.name, conversation.faceURL }, viewer,
        [this](const QString &userID) {
            const User user = users.value(userID);
            return ServiceRules::Profile { user.nickName, user.faceURL };
        });
    if (!conversation.messageIDs.isEmpty())
        seen.lastMessage = copyFor(conversation.messageIDs.constLast(), viewer);
    for (qsizetype i = qsizetype(conversation.readSeq.value(viewer)); i < conversation.messageIDs.size(); ++i) {
        if (messages.value(conversation.messageIDs.at(i)).message->sender() != viewer)
            ++seen.unreadCount;
    }
    seen.orderKey = conversation.orderKey;
    return seen;
}

QList<V2VORConversation> MessagingServer::Private::conversationList(const QString &userID) const
{
    QList<V2VORConversation> list;
    for (auto it = conversations.cbegin(); it != conversations.cend(); ++it) {
        if (it->members.contains(userID))
            list.append(conversationAs(it.key(), userID));
    }
    ServiceRules::sortConversations(list);
    return list;
}

QList<V2VORGroupInfo> MessagingServer::Private::groupsInfo(const QString &userID, const QStringList &groupIDs) const
{
    QList<V2VORGroupInfo> found;
    for (const QString &groupID : groupIDs) {
        if (!checkConversation(userID, groupID)) {
            const Conversation &group = conversations[groupID];
            found.append({ groupID, group.name, group.faceURL });
        }
    }
    return found;
}

CallError MessagingServer::Private::markGroupRead(const QString &userID, const QString &groupID)
{
    if (const CallError refused = checkConversation(userID, groupID))
        return refused;
    markRead(groupID, userID);
    return {};
}

CallError MessagingServer::Private::markDirectRead(const QString &userID, const QString &peerID)
{
    if (peerID.isEmpty() || !users.contains(peerID))
        return ServiceRules::userNotFound(peerID);
    const QString key = ServiceRules::directConversationKey(userID, peerID);
    if (conversations.contains(key))
        markRead(key, userID);
    return {};
}

void MessagingServer::Private::markRead(const QString &conversation, const QString &userID)
{
    Conversation &marked = conversations[conversation];
    const quint64 last = quint64(marked.messageIDs.size());
    if (marked.readSeq.value(userID) == last)
        return;
    marked.readSeq.insert(userID, last);
    publishConversation(conversation, { userID });
}

void MessagingServer::Private::publishConversation(const QString &conversation, const QStringList &userIDs)
{
    for (const QString &userID : userIDs) {
        publishTo(userID, [this, conversation](MessagingSession *session, const QString &viewer) -> std::function<void()> {
            return [session, seen = conversationAs(conversation, viewer)] { session->receiveConversationChanged(seen); };
        });
    }
}

void MessagingServer::Private::publishTo(const QString &userID, const EventFactory &factory)
{
    const QList<MessagingSession *> current = sessions;
    for (MessagingSession *session : current) {
        if (session->sessionUserID() != userID)
            continue;
        std::function<void()> task = factory(session, userID);
        if (!task)
            continue;
        if (holding)
            heldEvents.append({ session->sessionContext(), std::move(task) });
        else
            platform::MainQueue::async(session->sessionContext(), std::move(task));
    }
}
