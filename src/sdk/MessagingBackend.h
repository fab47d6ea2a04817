// The messaging service as its users reach it, whatever it is: the in-process service, a
// server across the network, or a server's own storage (memory or a distributed store).
// The same rules hold behind every implementation: message IDs, per-group sequences,
// statuses, custom messages, extensions with per-key versions where the first writer wins,
// the limits of V2VORErrorCode.h, access for members only, and events to every member.
//
// Every operation acts for `caller`'s user (MessagingSession::sessionUserID()) and answers
// through its callback exactly once: inside the call for an in-process service, later for
// one across the network. Events of a change reach the sessions the implementation serves
// directly before the callback of the call that made the change.
#pragma once

#include "sdk/MessagingSession.h"
#include "sdk/ServiceReply.h"
#include "sdk/V2VORGroupInfo.h"
#include "sdk/V2VORGroupMemberFullInfo.h"
#include "sdk/V2VORUserFullInfo.h"

#include <functional>
#include <optional>

class MessagingBackend
{
public:
    template<typename T> using Reply = std::function<void(const ServiceReply<T> &reply)>;
    using Done = std::function<void(const CallError &error)>;
    using ExtensionDone = std::function<void(const ExtensionReply &reply)>;

    virtual ~MessagingBackend() = default;

    // Sessions.
    /// `session` hears the events of its user from now on, once logged in.
    virtual void attach(MessagingSession *session) = 0;
    virtual void detach(MessagingSession *session) = 0;
    /// Makes `session` act for `userID`, proven by `token` where the service asks for proof.
    /// The session's sessionUserID() answers `userID` once `done` reports success.
    virtual void login(MessagingSession *session, const QString &userID, const QString &token, Done done) = 0;
    virtual void logout(MessagingSession *session, Done done) = 0;

    /// An injected failure for one of `operations` (test services only); counts the calls.
    virtual std::optional<CallError> admit(const QStringList &operations)
    {
        Q_UNUSED(operations);
        return std::nullopt;
    }
    /// A message ID no other message of the service carries.
    virtual QString newMessageID() = 0;

    // Messages.
    /// On success the reply holds the caller's copy of the stored message; a message whose ID
    /// the caller already sent answers the stored message again (a resend is harmless).
    virtual void send(MessagingSession *caller, const V2VORMessagePtr &message, const QString &receiver,
                      const QString &groupID, const SendRecord &record, Reply<V2VORMessagePtr> reply) = 0;
    /// Newest first, older than `beforeSeq` when it is not 0.
    virtual void history(MessagingSession *caller, const QString &groupID, int count, quint64 beforeSeq,
                         Reply<QList<V2VORMessagePtr>> reply) = 0;
    virtual void directHistory(MessagingSession *caller, const QString &peerID, int count, quint64 beforeSeq,
                               Reply<QList<V2VORMessagePtr>> reply) = 0;
    /// A conflict (8006) carries the service's current message in the reply's value.
    virtual void modify(MessagingSession *caller, const V2VORMessage &message, Reply<V2VORMessagePtr> reply) = 0;
    /// The ID of the group's message with sequence `seq`.
    virtual void messageAt(MessagingSession *caller, const QString &groupID, quint64 seq, Reply<QString> reply) = 0;

    // Extensions.
    virtual void getExtensions(MessagingSession *caller, const QString &msgID, ExtensionDone done) = 0;
    /// `seenVersions`: the version of each key the caller last saw (0: never saw it).
    virtual void setExtensions(MessagingSession *caller, const QString &msgID,
                               const QList<V2VORMessageExtension> &extensions,
                               const QHash<QString, quint64> &seenVersions, ExtensionDone done) = 0;
    virtual void deleteExtensions(
        MessagingSession *caller, const QString &msgID, const QStringList &keys, ExtensionDone done) = 0;

    // Conversations, users and groups.
    virtual void conversationList(MessagingSession *caller, Reply<QList<V2VORConversation>> reply) = 0;
    virtual void groupsInfo(
        MessagingSession *caller, const QStringList &groupIDs, Reply<QList<V2VORGroupInfo>> reply) = 0;
    virtual void markGroupRead(MessagingSession *caller, const QString &groupID, Done done) = 0;
    virtual void markDirectRead(MessagingSession *caller, const QString &peerID, Done done) = 0;
    virtual void members(MessagingSession *caller, const QString &groupID, const QStringList &memberIDs,
                         Reply<QList<V2VORGroupMemberFullInfo>> reply) = 0;
    virtual void usersInfo(
        MessagingSession *caller, const QStringList &userIDs, Reply<QList<V2VORUserFullInfo>> reply) = 0;

    // The directory, kept by the service's operators (over the network: an operator's token).
    virtual void addUser(MessagingSession *caller, const QString &userID, const QString &nickName,
                         const QString &faceURL, Done done) = 0;
    /// A new group counts as the latest activity of its members' conversation lists.
    virtual void createGroup(
        MessagingSession *caller, const QString &groupID, const QStringList &memberIDs, Done done) = 0;
    virtual void setGroupInfo(MessagingSession *caller, const QString &groupID, const QString &groupName,
                              const QString &faceURL, Done done) = 0;
    virtual void addGroupMember(MessagingSession *caller, const QString &groupID, const QString &userID,
                                const QString &nameCard, Done done) = 0;
    virtual void setNameCard(MessagingSession *caller, const QString &groupID, const QString &userID,
                             const QString &nameCard, Done done) = 0;
    virtual void setFriendRemark(MessagingSession *caller, const QString &viewerID, const QString &targetID,
                                 const QString &remark, Done done) = 0;
};
