#include "sdk/MessagingServerPrivate.h"

#include "platform/MainQueue.h"

#include <algorithm>

namespace {

CallError error(int code, const QString &desc)
{
    return { code, desc };
}

} // namespace

std::optional<CallError> MessagingServer::Private::admit(const QStringList &operations)
{
    for (const QString &operation : operations)
        ++callCounts[operation];
    for (const QString &operation : operations) {
        auto queued = failures.find(operation);
        if (queued != failures.end() && !queued->isEmpty())
            return queued->takeFirst();
    }
    return std::nullopt;
}

QString MessagingServer::Private::newMessageID()
{
    return QStringLiteral("msg-%1").arg(++lastMessageNumber);
}

CallError MessagingServer::Private::checkConversation(const QString &userID, const QString &groupID) const
{
    auto conversation = conversations.constFind(groupID);
    if (groupID.isEmpty() || conversation == conversations.constEnd() || !conversation->isGroup)
        return error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("group \"%1\" does not exist").arg(groupID));
    if (!conversation->members.contains(userID))
        return error(V2VOR_ERR_NOT_GROUP_MEMBER,
            QStringLiteral("user \"%1\" is not a member of group \"%2\"").arg(userID, groupID));
    return {};
}

CallError MessagingServer::Private::checkBody(const V2VORMessage &message)
{
    const qsizetype bytes = message.customElem() ? message.customElem()->data.size() : message.text().toUtf8().size();
    if (bytes > V2VORLimits::kMaxMessageBodyBytes)
        return error(V2VOR_ERR_MESSAGE_BODY_TOO_LARGE,
            QStringLiteral("message body of %1 bytes exceeds %2 bytes")
                .arg(bytes)
                .arg(V2VORLimits::kMaxMessageBodyBytes));
    return {};
}

QString MessagingServer::Private::conversationFor(
    const QString &sender, const QString &receiver, const QString &groupID)
{
    if (!groupID.isEmpty())
        return groupID;
    const QString id = directConversationKey(sender, receiver);
    Conversation &conversation = conversations[id];
    conversation.isGroup = false;
    conversation.members = { sender, receiver };
    return id;
}

CallError MessagingServer::Private::checkSend(
    const QString &sender, const V2VORMessagePtr &message, const QString &receiver, const QString &groupID) const
{
    if (!message)
        return error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("no message to send"));
    if (groupID.isEmpty() && receiver.isEmpty())
        return error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("a message needs a receiver or a group"));
    if (groupID.isEmpty() && !users.contains(receiver))
        return error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("user \"%1\" does not exist").arg(receiver));
    if (!groupID.isEmpty()) {
        if (const CallError refused = checkConversation(sender, groupID))
            return refused;
    }
    return checkBody(*message);
}

ServiceReply<V2VORMessagePtr> MessagingServer::Private::send(MessagingSession *caller, const QString &sender,
    const V2VORMessagePtr &message, const QString &receiver, const QString &groupID, const SendRecord &record)
{
    if (const CallError refused = checkSend(sender, message, receiver, groupID))
        return { refused };

    const QString msgID = message->msgID();
    const QString conversationID = conversationFor(sender, receiver, groupID);
    Conversation &conversation = conversations[conversationID];
    conversation.messageIDs.append(msgID);

    StoredMessage stored { message->clone(), conversationID, {}, record };
    stored.message->setGroupID(groupID);
    stored.message->setSeq(conversation.messageIDs.size());
    stored.message->setSender(sender);
    stored.message->setNickName(users.value(sender).nickName);
    stored.message->setFaceURL(users.value(sender).faceURL);
    stored.message->setTimestamp(platform::MainQueue::now());
    stored.message->setStatus(V2VOR_MSG_STATUS_SEND_SUCC);
    stored.message->setMessageVersion(0);
    messages.insert(msgID, stored);

    publish(
        conversationID,
        [this, msgID](MessagingSession *session, const QString &userID) -> std::function<void()> {
            return [session, copy = copyFor(msgID, userID)] { session->receiveNewMessage(copy); };
        },
        caller);
    conversation.orderKey = ++activityCounter;
    publishConversation(conversationID, conversation.members);
    return { {}, copyFor(msgID, sender) };
}

ServiceReply<QList<V2VORMessagePtr>> MessagingServer::Private::history(
    const QString &userID, const QString &groupID, int count, quint64 beforeSeq) const
{
    if (const CallError refused = checkConversation(userID, groupID))
        return { refused };
    return historyOf(groupID, userID, count, beforeSeq);
}

ServiceReply<V2VORMessagePtr> MessagingServer::Private::modify(const QString &userID, const V2VORMessage &message)
{
    auto stored = messages.find(message.msgID());
    if (stored == messages.end())
        return { error(
            V2VOR_ERR_MESSAGE_NOT_FOUND, QStringLiteral("message \"%1\" does not exist").arg(message.msgID())) };
    if (!conversations.value(stored->conversation).members.contains(userID))
        return { error(V2VOR_ERR_NOT_GROUP_MEMBER, QStringLiteral("only members may modify this message")) };
    if (const CallError refused = checkBody(message))
        return { refused };
    if (message.messageVersion() < stored->message->messageVersion())
        return { error(V2VOR_ERR_MESSAGE_MODIFY_CONFLICT,
                     QStringLiteral("message was modified since this copy was taken")),
            copyFor(message.msgID(), userID) };

    if (message.customElem())
        stored->message->setCustomElem(std::make_unique<V2VORCustomElem>(*message.customElem()));
    stored->message->setText(message.text());
    stored->message->setMessageVersion(stored->message->messageVersion() + 1);

    const QString msgID = message.msgID();
    publish(stored->conversation, [this, msgID](MessagingSession *session, const QString &viewer) -> std::function<void()> {
        return [session, copy = copyFor(msgID, viewer)] { session->receiveModified(copy); };
    });
    return { {}, copyFor(msgID, userID) };
}

ServiceReply<QString> MessagingServer::Private::messageAt(
    const QString &userID, const QString &groupID, quint64 seq) const
{
    if (const CallError refused = checkConversation(userID, groupID))
        return { refused };
    const QStringList &ids = conversations.value(groupID).messageIDs;
    if (seq < 1 || seq > quint64(ids.size()))
        return { error(V2VOR_ERR_MESSAGE_NOT_FOUND,
            QStringLiteral("group \"%1\" has no message with sequence %2").arg(groupID).arg(seq)) };
    return { {}, ids.at(qsizetype(seq - 1)) };
}

CallError MessagingServer::Private::checkExtensionAccess(const QString &userID, const QString &msgID) const
{
    auto stored = messages.constFind(msgID);
    if (stored == messages.constEnd())
        return error(V2VOR_ERR_MESSAGE_NOT_FOUND, QStringLiteral("message \"%1\" does not exist").arg(msgID));
    if (!stored->message->supportMessageExtension())
        return error(V2VOR_ERR_EXTENSION_NOT_SUPPORTED,
            QStringLiteral("message \"%1\" was not sent with extension support").arg(msgID));
    if (!conversations.value(stored->conversation).members.contains(userID))
        return error(V2VOR_ERR_NOT_GROUP_MEMBER,
            QStringLiteral("user \"%1\" is not a member of the message's group").arg(userID));
    return {};
}

ExtensionReply MessagingServer::Private::getExtensions(const QString &userID, const QString &msgID) const
{
    ExtensionReply reply;
    reply.msgID = msgID;
    reply.error = checkExtensionAccess(userID, msgID);
    if (reply.error)
        return reply;
    const ExtensionStore &store = messages.value(msgID).extensions;
    reply.extensions = store.list();
    for (const V2VORMessageExtension &extension : std::as_const(reply.extensions))
        reply.versions.insert(extension.extensionKey, store.version(extension.extensionKey));
    return reply;
}

std::optional<V2VORMessageExtensionResult> MessagingServer::Private::injectedKeyFailure(
    const QString &key, const QString &value)
{
    auto failure = keyFailures.find(key);
    if (failure == keyFailures.end())
        return std::nullopt;
    V2VORMessageExtensionResult result { failure->code, failure->desc, { key, value } };
    keyFailures.erase(failure);
    return result;
}

namespace {

CallError checkCallSize(qsizetype count)
{
    if (count == 0)
        return error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("no extensions given"));
    if (count > V2VORLimits::kMaxExtensionsPerCall)
        return error(V2VOR_ERR_EXTENSION_TOO_MANY_IN_CALL,
            QStringLiteral("%1 extensions in one call; at most %2 are allowed")
                .arg(count)
                .arg(V2VORLimits::kMaxExtensionsPerCall));
    return {};
}

} // namespace

ExtensionReply MessagingServer::Private::setExtensions(const QString &userID, const QString &msgID,
    const QList<V2VORMessageExtension> &extensions, const QHash<QString, quint64> &seenVersions)
{
    ExtensionReply reply;
    reply.msgID = msgID;
    reply.error = checkCallSize(extensions.size());
    if (!reply.error)
        reply.error = checkExtensionAccess(userID, msgID);
    if (reply.error)
        return reply;

    ExtensionStore &store = messages[msgID].extensions;
    QList<V2VORMessageExtension> changed;
    QHash<QString, quint64> seen = seenVersions;
    for (const V2VORMessageExtension &extension : extensions) {
        const QString &key = extension.extensionKey;
        auto result = injectedKeyFailure(key, extension.extensionValue);
        if (!result)
            result = store.set(extension, seen.value(key));
        if (result->resultCode == V2VOR_SUCC)
            changed.append(extension);
        if (result->resultCode == V2VOR_SUCC || result->resultCode == V2VOR_ERR_EXTENSION_VERSION_CONFLICT) {
            seen.insert(key, store.version(key));
            reply.versions.insert(key, store.version(key));
        }
        reply.results.append(*result);
    }
    publishExtensionChange(msgID, changed, {}, reply.versions);
    return reply;
}

ExtensionReply MessagingServer::Private::deleteExtensions(
    const QString &userID, const QString &msgID, const QStringList &keys)
{
    ExtensionReply reply;
    reply.msgID = msgID;
    reply.error = checkCallSize(keys.size());
    if (!reply.error)
        reply.error = checkExtensionAccess(userID, msgID);
    if (reply.error)
        return reply;

    ExtensionStore &store = messages[msgID].extensions;
    QStringList deleted;
    for (const QString &key : keys) {
        const bool live = store.contains(key);
        auto result = injectedKeyFailure(key, {});
        if (!result)
            result = store.remove(key);
        if (result->resultCode == V2VOR_SUCC && live) {
            deleted.append(key);
            reply.versions.insert(key, store.version(key));
        }
        reply.results.append(*result);
    }
    publishExtensionChange(msgID, {}, deleted, reply.versions);
    return reply;
}

void MessagingServer::Private::publishExtensionChange(const QString &msgID, const QList<V2VORMessageExtension> &changed,
    const QStringList &deleted, const QHash<QString, quint64> &versions)
{
    if (changed.isEmpty() && deleted.isEmpty())
        return;
    publish(messages.value(msgID).conversation, [=](MessagingSession *session, const QString &) -> std::function<void()> {
        if (!changed.isEmpty())
            return [=] { session->receiveExtensionsChanged(msgID, changed, versions); };
        return [=] { session->receiveExtensionsDeleted(msgID, deleted, versions); };
    });
}

ServiceReply<QList<V2VORGroupMemberFullInfo>> MessagingServer::Private::members(
    const QString &userID, const QString &groupID, const QStringList &memberIDs) const
{
    if (const CallError refused = checkConversation(userID, groupID))
        return { refused };
    const Conversation &group = conversations[groupID];
    const QStringList &wanted = memberIDs.isEmpty() ? group.members : memberIDs;
    QList<V2VORGroupMemberFullInfo> found;
    for (const QString &memberID : wanted) {
        if (!group.members.contains(memberID))
            continue;
        const User user = users.value(memberID);
        found.append({ memberID, user.nickName, user.faceURL, group.nameCards.value(memberID),
            friendRemarks.value(userID).value(memberID) });
    }
    return { {}, found };
}

QList<V2VORUserFullInfo> MessagingServer::Private::usersInfo(const QStringList &userIDs) const
{
    QList<V2VORUserFullInfo> found;
    for (const QString &userID : userIDs) {
        auto user = users.constFind(userID);
        if (user != users.constEnd())
            found.append({ userID, user->nickName, user->faceURL });
    }
    return found;
}

V2VORMessagePtr MessagingServer::Private::copyFor(const QString &msgID, const QString &userID) const
{
    auto stored = messages.constFind(msgID);
    if (stored == messages.constEnd())
        return nullptr;
    V2VORMessagePtr copy = stored->message->clone();
    copy->setIsSelf(copy->sender() == userID);
    if (copy->groupID().isEmpty()) {
        const QStringList members = conversations.value(stored->conversation).members;
        copy->setUserID(members.value(members.indexOf(userID) == 0 ? 1 : 0));
    }
    return copy;
}

void MessagingServer::Private::publish(
    const QString &conversation, const EventFactory &factory, MessagingSession *except)
{
    QStringList members = conversations.value(conversation).members;
    members.removeDuplicates();
    for (const QString &userID : members) {
        publishTo(userID, [&](MessagingSession *session, const QString &viewer) -> std::function<void()> {
            return session == except ? std::function<void()>() : factory(session, viewer);
        });
    }
}
