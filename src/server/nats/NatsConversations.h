// The conversations of the NATS-backed service as each member sees them: lists ordered by
// latest activity, group profiles and members, read marks and unread counts, and the
// changes that keep every member's list current. Read marks and order
// keys live in the directory (see NatsDirectory.h); unread counts come from the messages.
#pragma once

#include "sdk/ServiceReply.h"
#include "sdk/V2VORConversation.h"
#include "sdk/V2VORGroupInfo.h"
#include "sdk/V2VORGroupMemberFullInfo.h"
#include "server/nats/NatsChange.h"

class NatsDirectory;
class NatsEvents;
class NatsMessages;

class NatsConversations
{
public:
    NatsConversations(NatsDirectory &directory, NatsMessages &messages, NatsEvents &events);

    V2VORConversation conversationAs(const QString &key, const QString &viewer);
    /// The conversation as each of `viewers` sees it.
    QHash<QString, V2VORConversation> viewsOf(const QString &key, const QList<QString> &viewers);
    QList<V2VORConversation> list(const QString &userID);
    QList<V2VORGroupInfo> groupsInfo(const QString &userID, const QStringList &groupIDs);
    ServiceReply<QList<V2VORGroupMemberFullInfo>> members(
        const QString &userID, const QString &groupID, const QStringList &memberIDs);

    CallError markGroupRead(const QString &userID, const QString &groupID);
    CallError markDirectRead(const QString &userID, const QString &peerID);
    /// The conversation saw activity: it moves to the top of every member's list.
    void touched(const QString &key);

private:
    void markRead(const QString &key, const QString &userID);
    /// The change that makes each member's server tell them how the conversation now looks.
    static NatsChange moved(const QString &key);

    NatsDirectory &m_directory;
    NatsMessages &m_messages;
    NatsEvents &m_events;
};
