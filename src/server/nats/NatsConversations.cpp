#include "server/nats/NatsConversations.h"

#include "sdk/ServiceRules.h"
#include "server/nats/NatsDirectory.h"
#include "server/nats/NatsEvents.h"
#include "server/nats/NatsMessages.h"

NatsConversations::NatsConversations(NatsDirectory &directory, NatsMessages &messages, NatsEvents &events)
    : m_directory(directory)
    , m_messages(messages)
    , m_events(events)
{
    m_events.setConversationViews(
        [this](const QString &key, const QList<QString> &viewers) { return viewsOf(key, viewers); });
}

V2VORConversation NatsConversations::conversationAs(const QString &key, const QString &viewer)
{
    return viewsOf(key, { viewer }).value(viewer);
}

QHash<QString, V2VORConversation> NatsConversations::viewsOf(const QString &key, const QList<QString> &viewers)
{
    // What every viewer sees alike is read once; only read marks are each viewer's own.
    const NatsDirectory::Conversation conversation
        = m_directory.conversation(key).value_or(NatsDirectory::Conversation {});
    const quint64 top = m_messages.topSeq(key);
    const auto last = top ? m_messages.load(key, top) : std::nullopt;
    const quint64 orderKey = m_directory.orderKey(key);
    QHash<QString, V2VORConversation> views;
    for (const QString &viewer : viewers) {
        V2VORConversation seen = ServiceRules::conversationAs(
            { key, conversation.isGroup, conversation.members, conversation.name, conversation.faceURL }, viewer,
            [this](const QString &userID) {
                const NatsDirectory::User user = m_directory.user(userID).value_or(NatsDirectory::User {});
                return ServiceRules::Profile { user.nickName, user.faceURL };
            });
        for (quint64 seq = m_directory.readSeq(key, viewer) + 1; seq <= top; ++seq) {
            if (m_messages.senderAt(key, seq) != viewer)
                ++seen.unreadCount;
        }
        if (last)
            seen.lastMessage = m_messages.copyFor(*last, key, viewer);
        seen.orderKey = orderKey;
        views.insert(viewer, seen);
    }
    return views;
}

QList<V2VORConversation> NatsConversations::list(const QString &userID)
{
    QList<V2VORConversation> list;
    for (const QString &key : m_directory.conversationsOf(userID))
        list.append(conversationAs(key, userID));
    ServiceRules::sortConversations(list);
    return list;
}

QList<V2VORGroupInfo> NatsConversations::groupsInfo(const QString &userID, const QStringList &groupIDs)
{
    QList<V2VORGroupInfo> found;
    for (const QString &groupID : groupIDs) {
        if (!m_directory.checkGroupMember(userID, groupID)) {
            const auto group = m_directory.conversation(groupID).value_or(NatsDirectory::Conversation {});
            found.append({ groupID, group.name, group.faceURL });
        }
    }
    return found;
}

ServiceReply<QList<V2VORGroupMemberFullInfo>> NatsConversations::members(
    const QString &userID, const QString &groupID, const QStringList &memberIDs)
{
    if (const CallError refused = m_directory.checkGroupMember(userID, groupID))
        return { refused };
    const NatsDirectory::Conversation group
        = m_directory.conversation(groupID).value_or(NatsDirectory::Conversation {});
    QList<V2VORGroupMemberFullInfo> found;
    for (const QString &memberID : memberIDs.isEmpty() ? group.members : memberIDs) {
        if (!group.members.contains(memberID))
            continue;
        const NatsDirectory::User user = m_directory.user(memberID).value_or(NatsDirectory::User {});
        found.append({ memberID, user.nickName, user.faceURL, group.nameCards.value(memberID),
            m_directory.remark(userID, memberID) });
    }
    return { {}, found };
}

CallError NatsConversations::markGroupRead(const QString &userID, const QString &groupID)
{
    const CallError refused = m_directory.checkGroupMember(userID, groupID);
    if (!refused)
        markRead(groupID, userID);
    return refused;
}

CallError NatsConversations::markDirectRead(const QString &userID, const QString &peerID)
{
    if (peerID.isEmpty() || !m_directory.user(peerID))
        return ServiceRules::userNotFound(peerID);
    const QString key = ServiceRules::directConversationKey(userID, peerID);
    if (m_directory.conversation(key))
        markRead(key, userID);
    return {};
}

void NatsConversations::markRead(const QString &key, const QString &userID)
{
    const quint64 last = m_messages.topSeq(key);
    if (m_directory.readSeq(key, userID) == last)
        return;
    m_directory.setReadSeq(key, userID, last);
    m_events.emitChangeTo(userID, moved(key));
}

void NatsConversations::touched(const QString &key)
{
    m_directory.touch(key);
    m_events.emitChange(moved(key));
}

NatsChange NatsConversations::moved(const QString &key)
{
    NatsChange change;
    change.kind = NatsChange::ConversationChanged;
    change.conversation = key;
    return change;
}
