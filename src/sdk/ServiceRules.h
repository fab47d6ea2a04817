// The rules every implementation of the messaging service answers by, whatever holds its
// state: size limits of bodies and extension calls, the key of a one-to-one chat, how a
// conversation looks to one of its members, how conversation lists are ordered, and the texts
// of the errors they share. The in-process service and the NATS store both answer through
// these, so clients cannot tell them apart.
#pragma once

#include "sdk/ServiceReply.h"
#include "sdk/V2VORConversation.h"

#include <QStringList>
#include <functional>

namespace ServiceRules {

/// What a conversation is made of, whatever store keeps it.
struct ConversationParts
{
    /// The group ID, or the one-to-one key from directConversationKey().
    QString key;
    bool isGroup = true;
    QStringList members;
    QString name;
    QString faceURL;
};

/// A user's profile as a conversation shows it.
struct Profile
{
    QString nickName;
    QString faceURL;
};
using ProfileOf = std::function<Profile(const QString &userID)>;

/// Refuses a message whose body (custom data, else its text as UTF-8) is over the limit.
CallError checkBody(const V2VORMessage &message);
/// Refuses an extension call with no keys or with more than one call may carry.
CallError checkCallSize(qsizetype count);

/// The key of the one-to-one conversation of two users, whichever way round.
QString directConversationKey(QString a, QString b);
/// The other member of a one-to-one conversation, as `viewer` sees it.
QString peerOf(const QStringList &members, const QString &viewer);
/// The conversation as `viewer` sees it, without its messages (last message, unread count
/// and order key are the store's to fill in).
V2VORConversation conversationAs(const ConversationParts &parts, const QString &viewer, const ProfileOf &profileOf);
/// Latest activity first; equal keys (groups never active) by ID, so every client lists alike.
void sortConversations(QList<V2VORConversation> &list);

CallError groupNotFound(const QString &groupID);
CallError notGroupMember(const QString &userID, const QString &groupID);
CallError userNotFound(const QString &userID);
CallError messageNotFound(const QString &msgID);
CallError noMessageAt(const QString &groupID, quint64 seq);
CallError notMemberToModify();
CallError modifiedMeanwhile();
CallError extensionsNotSupported(const QString &msgID);
CallError notMemberOfMessageGroup(const QString &userID);
/// Refuses a send without a message, or with neither a receiver nor a group.
CallError checkAddress(const V2VORMessagePtr &message, const QString &receiver, const QString &groupID);

} // namespace ServiceRules
