// The arguments of every operation a client may ask for, read from a request's "args" with
// strict types: a member that is missing or of the wrong type is named in a 9501, an operation
// the protocol does not have answers 9504. Reading touches no service, so it can be fuzzed alone.
#pragma once

#include "sdk/ServiceReply.h"
#include "sdk/V2VORMessage.h"

#include <QJsonObject>
#include <QStringList>
#include <optional>
#include <variant>

namespace RequestArgs {

struct Hello
{
    QString token;
};
struct Ping
{
};
struct SendMessage
{
    V2VORMessagePtr message;
    QString receiver;
    QString groupID;
    int priority = 0;
    bool onlineUserOnly = false;
    std::optional<V2VOROfflinePushInfo> offlinePushInfo;
};
struct History
{
    QString groupID;
    int count = 0;
    quint64 beforeSeq = 0;
};
struct DirectHistory
{
    QString peerID;
    int count = 0;
    quint64 beforeSeq = 0;
};
struct ModifyMessage
{
    V2VORMessagePtr message;
};
struct MessageAt
{
    QString groupID;
    quint64 seq = 0;
};
struct GetExtensions
{
    QString msgID;
};
struct SetExtensions
{
    QString msgID;
    QList<V2VORMessageExtension> extensions;
    QHash<QString, quint64> seen;
};
struct DeleteExtensions
{
    QString msgID;
    QStringList keys;
};
struct ConversationList
{
};
struct GroupsInfo
{
    QStringList groupIDs;
};
struct MarkGroupRead
{
    QString groupID;
};
struct MarkDirectRead
{
    QString peerID;
};
struct Members
{
    QString groupID;
    QStringList memberIDs;
};
struct UsersInfo
{
    QStringList userIDs;
};
struct AddUser
{
    QString userID, nickName, faceURL;
};
struct CreateGroup
{
    QString groupID;
    QStringList memberIDs;
};
struct SetGroupInfo
{
    QString groupID, groupName, faceURL;
};
struct AddGroupMember
{
    QString groupID, userID, nameCard;
};
struct SetNameCard
{
    QString groupID, userID, nameCard;
};
struct SetFriendRemark
{
    QString viewerID, targetID, remark;
};

using Args = std::variant<Hello, Ping, SendMessage, History, DirectHistory, ModifyMessage, MessageAt, GetExtensions,
    SetExtensions, DeleteExtensions, ConversationList, GroupsInfo, MarkGroupRead, MarkDirectRead, Members, UsersInfo,
    AddUser, CreateGroup, SetGroupInfo, AddGroupMember, SetNameCard, SetFriendRemark>;

struct Parsed
{
    std::optional<Args> args;
    /// Why `args` is empty.
    CallError error;
};

Parsed parseArgs(const QString &op, const QJsonObject &args);
/// Operations that change the directory (users, groups, members): for operators only.
bool isDirectoryOp(const QString &op);
/// Every operation of the protocol.
QStringList operations();

} // namespace RequestArgs
