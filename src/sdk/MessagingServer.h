// The in-process messaging service behind every V2VORManager of the process: the single source
// of truth for users, groups, members, messages, extensions and message versions. Programs make
// one; tests make one per test and play several users through several clients.
//
// Test controls: make the next call of an operation fail, fail single extension keys, and hold
// event delivery to see what clients do before they hear of a change.
#pragma once

#include "sdk/V2VORGroupMemberFullInfo.h"
#include "sdk/V2VORMessage.h"
#include "sdk/V2VORMessageExtension.h"
#include "sdk/ServiceReply.h"

#include <QObject>
#include <QStringList>
#include <memory>
#include <optional>

class LocalBackend;

class MessagingServer : public QObject
{
    Q_OBJECT

public:
    using SendRecord = ::SendRecord;

    explicit MessagingServer(QObject *parent = nullptr);
    ~MessagingServer() override;

    // Directory.
    void addUser(const QString &userID, const QString &nickName = {}, const QString &faceURL = {});
    bool hasUser(const QString &userID) const;
    /// A new group counts as the latest activity of its members' conversation lists.
    void createGroup(const QString &groupID, const QStringList &memberIDs = {});
    void setGroupInfo(const QString &groupID, const QString &groupName, const QString &faceURL = {});
    void addGroupMember(const QString &groupID, const QString &userID, const QString &nameCard = {});
    void setNameCard(const QString &groupID, const QString &userID, const QString &nameCard);
    /// The remark `viewerID` keeps for `targetID`.
    void setFriendRemark(const QString &viewerID, const QString &targetID, const QString &remark);
    bool isGroupMember(const QString &groupID, const QString &userID) const;

    // Fault injection. Operation names are V2VORManager's method names ("sendMessage",
    // "findMessages", "setMessageExtensions", ...) or an experimental API's name
    // ("setMessageExtensionsBySequence", "writeLog", ...).
    void failNextCall(const QString &operation, int code, const QString &desc);
    /// The next write or deletion of `key` answers this code in the key's result.
    void failNextKey(const QString &key, int code, const QString &desc);
    /// Events wait until releaseEvents(); callbacks of calls still arrive.
    void holdEvents();
    void releaseEvents();
    int heldEventCount() const;

    // Inspection.
    /// How many times clients called `operation`, refused calls included.
    int callCount(const QString &operation) const;
    /// The service's live (not deleted) extensions of a message, in the order first written.
    QList<V2VORMessageExtension> extensionsOf(const QString &msgID) const;
    /// Copies of the service's messages of a group, oldest first.
    QList<V2VORMessagePtr> groupMessages(const QString &groupID) const;
    /// A copy of the service's message; null when there is none.
    V2VORMessagePtr messageByID(const QString &msgID) const;
    std::optional<SendRecord> sendRecord(const QString &msgID) const;

    /// The service's internals (MessagingServerPrivate.h), for the library's own backends.
    class Private;

private:
    friend class LocalBackend;
    std::unique_ptr<Private> d;
};
