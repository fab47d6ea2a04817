// The service's directory in the "vor_directory" bucket: users, conversations (groups and
// one-to-one chats) with their members, name cards and profiles, each user's list of
// conversations, friend remarks, read marks and conversation order keys. Records are JSON;
// changes to a conversation are read-modify-writes checked against the record's revision, so
// concurrent servers never lose each other's members.
//
//   user.<user>                 {"nickName", "faceURL"}
//   conv.<conversation>         {"isGroup", "members": [...], "nameCards": {...}, "name", "faceURL"}
//   mine.<user>.<conversation>  empty: the user belongs to the conversation
//   remark.<viewer>.<target>    the remark as UTF-8
//   read.<conversation>.<user>  the sequence up to which the user has read, in decimal
//   order.<conversation>        empty; its revision is the conversation's order key, so order
//                               keys grow with every activity across all servers
//
// Every ID is one NatsKeyCodec token. Members are never removed, so the members once seen are
// remembered in memory and kept current by hearing every write to a conversation record, from
// any server: a known member is confirmed and the members of a known conversation are listed
// without a round trip. Someone not (yet) known as a member is looked up in the store before
// being refused.
#pragma once

#include "sdk/ServiceReply.h"
#include "server/nats/NatsStore.h"

#include <QHash>
#include <QStringList>
#include <functional>
#include <optional>

class NatsDirectory
{
public:
    struct User
    {
        QString nickName;
        QString faceURL;
    };
    struct Conversation
    {
        bool isGroup = true;
        QStringList members;
        QHash<QString, QString> nameCards;
        QString name;
        QString faceURL;
    };

    explicit NatsDirectory(NatsStore &store);
    ~NatsDirectory();

    std::optional<User> user(const QString &userID) const;
    void putUser(const QString &userID, const User &user);
    /// Adds the user with an empty profile unless the directory has it.
    void ensureUser(const QString &userID);

    std::optional<Conversation> conversation(const QString &key) const;
    /// Applies `change` to the conversation (a new group when absent); true when it was new.
    bool changeConversation(const QString &key, const std::function<void(Conversation &)> &change);
    bool isMember(const QString &key, const QString &userID);
    /// The members of the conversation (none when it does not exist).
    QStringList members(const QString &key);
    /// Refuses a group that does not exist (one-to-one chats are no groups) or a non-member.
    CallError checkGroupMember(const QString &userID, const QString &groupID);
    /// The conversations `userID` belongs to.
    QStringList conversationsOf(const QString &userID) const;
    void addMember(const QString &key, const QString &userID, const QString &nameCard);
    /// Hears members this server had not known of, whichever server added them.
    void setMembersObserver(std::function<void(const QString &key, const QStringList &added)> observer);

    QString remark(const QString &viewerID, const QString &targetID) const;
    void setRemark(const QString &viewerID, const QString &targetID, const QString &remark);
    quint64 readSeq(const QString &key, const QString &userID) const;
    void setReadSeq(const QString &key, const QString &userID, quint64 seq);
    quint64 orderKey(const QString &key) const;
    /// Marks the conversation as the latest activity.
    void touch(const QString &key);

private:
    /// Adds the members of a conversation record to those known.
    void learnMembers(const QString &key, const QStringList &members);
    QStringList knownMembers(const QString &key);

    NatsStore &m_store;
    quint64 m_watch = 0;
    QHash<QString, QStringList> m_knownMembers;
    std::function<void(const QString &key, const QStringList &added)> m_membersObserver;
};
