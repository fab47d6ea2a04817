// Internals of the in-process messaging service: the directory, the conversations with their
// messages and extensions, fault injection, and the delivery of events to member clients.
// Clients call the operations below synchronously and report the outcome later themselves.
#pragma once

#include "sdk/ExtensionStore.h"
#include "sdk/MessagingSession.h"
#include "sdk/MessagingServer.h"
#include "sdk/ServiceReply.h"
#include "sdk/V2VORConversation.h"
#include "sdk/V2VORGroupInfo.h"
#include "sdk/V2VORUserFullInfo.h"

#include <QHash>
#include <QPointer>
#include <functional>

class MessagingServer::Private
{
public:
    struct User
    {
        QString nickName;
        QString faceURL;
    };
    /// A group, or the one-to-one chat of two users.
    struct Conversation
    {
        bool isGroup = true;
        QStringList members;
        QHash<QString, QString> nameCards;
        /// Message IDs in sequence order: the message with seq n is at n - 1.
        QStringList messageIDs;
        QString name;
        QString faceURL;
        /// The service's activity counter at the conversation's latest activity.
        quint64 orderKey = 0;
        /// user ID -> the sequence up to which that member has read.
        QHash<QString, quint64> readSeq;
    };
    struct StoredMessage
    {
        V2VORMessagePtr message;
        QString conversation;
        ExtensionStore extensions;
        SendRecord record;
    };
    /// Turns an event into the task one session runs when it hears of it.
    using EventFactory = std::function<std::function<void()>(MessagingSession *session, const QString &userID)>;

    // Calls made by clients.
    std::optional<CallError> admit(const QStringList &operations);
    QString newMessageID();
    ServiceReply<V2VORMessagePtr> send(MessagingSession *caller, const QString &sender, const V2VORMessagePtr &message,
        const QString &receiver, const QString &groupID, const SendRecord &record);
    ServiceReply<QList<V2VORMessagePtr>> history(
        const QString &userID, const QString &groupID, int count, quint64 beforeSeq) const;
    /// One-to-one history with `peerID`; empty while the two have exchanged nothing.
    ServiceReply<QList<V2VORMessagePtr>> directHistory(
        const QString &userID, const QString &peerID, int count, quint64 beforeSeq) const;
    QList<V2VORConversation> conversationList(const QString &userID) const;
    QList<V2VORGroupInfo> groupsInfo(const QString &userID, const QStringList &groupIDs) const;
    /// Marks everything in the group (or the one-to-one chat with `peerID`) read for `userID`.
    CallError markGroupRead(const QString &userID, const QString &groupID);
    CallError markDirectRead(const QString &userID, const QString &peerID);
    ServiceReply<V2VORMessagePtr> modify(const QString &userID, const V2VORMessage &message);
    ServiceReply<QString> messageAt(const QString &userID, const QString &groupID, quint64 seq) const;
    ExtensionReply getExtensions(const QString &userID, const QString &msgID) const;
    ExtensionReply setExtensions(const QString &userID, const QString &msgID,
        const QList<V2VORMessageExtension> &extensions, const QHash<QString, quint64> &seenVersions);
    ExtensionReply deleteExtensions(const QString &userID, const QString &msgID, const QStringList &keys);
    ServiceReply<QList<V2VORGroupMemberFullInfo>> members(
        const QString &userID, const QString &groupID, const QStringList &memberIDs) const;
    QList<V2VORUserFullInfo> usersInfo(const QStringList &userIDs) const;
    /// The service's message as `userID` would hold it; null when there is none.
    V2VORMessagePtr copyFor(const QString &msgID, const QString &userID) const;

    QHash<QString, User> users;
    QHash<QString, Conversation> conversations;
    /// viewer -> target -> remark
    QHash<QString, QHash<QString, QString>> friendRemarks;
    QHash<QString, StoredMessage> messages;
    quint64 lastMessageNumber = 0;
    /// Grows with every conversation activity; orders the conversation lists.
    quint64 activityCounter = 0;
    /// Sessions attached to the service; each detaches before it dies.
    QList<MessagingSession *> sessions;

    QHash<QString, QList<CallError>> failures;
    QHash<QString, CallError> keyFailures;
    QHash<QString, int> callCounts;

    struct HeldEvent
    {
        QPointer<QObject> context;
        std::function<void()> task;
    };
    bool holding = false;
    QList<HeldEvent> heldEvents;

private:
    CallError checkSend(
        const QString &sender, const V2VORMessagePtr &message, const QString &receiver, const QString &groupID) const;
    CallError checkConversation(const QString &userID, const QString &groupID) const;
    CallError checkExtensionAccess(const QString &userID, const QString &msgID) const;
    QString conversationFor(const QString &sender, const QString &receiver, const QString &groupID);
    /// Hands an event to every logged-in session of the conversation's members but `except`.
    void publish(const QString &conversation, const EventFactory &factory, MessagingSession *except = nullptr);
    /// Hands an event to every logged-in session of `userID`.
    void publishTo(const QString &userID, const EventFactory &factory);
    /// Tells each of `userIDs` how the conversation now looks to them.
    void publishConversation(const QString &conversation, const QStringList &userIDs);
    V2VORConversation conversationAs(const QString &conversation, const QString &viewer) const;
    ServiceReply<QList<V2VORMessagePtr>> historyOf(
        const QString &conversation, const QString &userID, int count, quint64 beforeSeq) const;
    void markRead(const QString &conversation, const QString &userID);
    void publishExtensionChange(const QString &msgID, const QList<V2VORMessageExtension> &changed,
        const QStringList &deleted, const QHash<QString, quint64> &versions);
    std::optional<V2VORMessageExtensionResult> injectedKeyFailure(const QString &key, const QString &value);
};
