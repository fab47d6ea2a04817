#include "sdk/ServiceRules.h"

#include "sdk/V2VORCustomElem.h"

#include <algorithm>

namespace ServiceRules {

CallError checkBody(const V2VORMessage &message)
{
    const qsizetype bytes = message.customElem() ? message.customElem()->data.size() : message.text().toUtf8().size();
    if (bytes > V2VORLimits::kMaxMessageBodyBytes)
        return { V2VOR_ERR_MESSAGE_BODY_TOO_LARGE,
            QStringLiteral("message body of %1 bytes exceeds %2 bytes")
                .arg(bytes)
                .arg(V2VORLimits::kMaxMessageBodyBytes) };
    return {};
}

CallError checkCallSize(qsizetype count)
{
    if (count == 0)
        return { V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("no extensions given") };
    if (count > V2VORLimits::kMaxExtensionsPerCall)
        return { V2VOR_ERR_EXTENSION_TOO_MANY_IN_CALL,
            QStringLiteral("%1 extensions in one call; at most %2 are allowed")
                .arg(count)
                .arg(V2VORLimits::kMaxExtensionsPerCall) };
    return {};
}

QString directConversationKey(QString a, QString b)
{
    if (b < a)
        std::swap(a, b);
    return QStringLiteral("c2c:%1|%2").arg(a, b);
}

QString peerOf(const QStringList &members, const QString &viewer)
{
    return members.value(members.indexOf(viewer) == 0 ? 1 : 0);
}

V2VORConversation conversationAs(const ConversationParts &parts, const QString &viewer, const ProfileOf &profileOf)
{
    V2VORConversation seen;
    seen.type = parts.isGroup ? V2VOR_GROUP : V2VOR_C2C;
    if (parts.isGroup) {
        seen.groupID = parts.key;
        seen.conversationID = QStringLiteral("group_") + parts.key;
        seen.showName = parts.name.isEmpty() ? parts.key : parts.name;
        seen.faceURL = parts.faceURL;
    } else {
        seen.userID = peerOf(parts.members, viewer);
        seen.conversationID = QStringLiteral("c2c_") + seen.userID;
        const Profile peer = profileOf(seen.userID);
        seen.showName = peer.nickName.isEmpty() ? seen.userID : peer.nickName;
        seen.faceURL = peer.faceURL;
    }
    return seen;
}

void sortConversations(QList<V2VORConversation> &list)
{
    std::sort(list.begin(), list.end(), [](const V2VORConversation &a, const V2VORConversation &b) {
        return a.orderKey != b.orderKey ? a.orderKey > b.orderKey : a.conversationID < b.conversationID;
    });
}

CallError groupNotFound(const QString &groupID)
{
    return { V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("group \"%1\" does not exist").arg(groupID) };
}

CallError notGroupMember(const QString &userID, const QString &groupID)
{
    return { V2VOR_ERR_NOT_GROUP_MEMBER,
        QStringLiteral("user \"%1\" is not a member of group \"%2\"").arg(userID, groupID) };
}

CallError userNotFound(const QString &userID)
{
    return { V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("user \"%1\" does not exist").arg(userID) };
}

CallError messageNotFound(const QString &msgID)
{
    return { V2VOR_ERR_MESSAGE_NOT_FOUND, QStringLiteral("message \"%1\" does not exist").arg(msgID) };
}

CallError noMessageAt(const QString &groupID, quint64 seq)
{
    return { V2VOR_ERR_MESSAGE_NOT_FOUND,
        QStringLiteral("group \"%1\" has no message with sequence %2").arg(groupID).arg(seq) };
}

CallError notMemberToModify()
{
    return { V2VOR_ERR_NOT_GROUP_MEMBER, QStringLiteral("only members may modify this message") };
}

CallError modifiedMeanwhile()
{
    return { V2VOR_ERR_MESSAGE_MODIFY_CONFLICT, QStringLiteral("message was modified since this copy was taken") };
}

CallError extensionsNotSupported(const QString &msgID)
{
    return { V2VOR_ERR_EXTENSION_NOT_SUPPORTED,
        QStringLiteral("message \"%1\" was not sent with extension support").arg(msgID) };
}

CallError notMemberOfMessageGroup(const QString &userID)
{
    return { V2VOR_ERR_NOT_GROUP_MEMBER,
        QStringLiteral("user \"%1\" is not a member of the message's group").arg(userID) };
}

CallError checkAddress(const V2VORMessagePtr &message, const QString &receiver, const QString &groupID)
{
    if (!message)
        return { V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("no message to send") };
    if (groupID.isEmpty() && receiver.isEmpty())
        return { V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("a message needs a receiver or a group") };
    return {};
}

} // namespace ServiceRules
