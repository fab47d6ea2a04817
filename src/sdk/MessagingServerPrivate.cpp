#include "sdk/MessagingServerPrivate.h"

#include "platform/MainQueue.h"
#include "sdk/ServiceRules.h"

#include <algorithm>

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
        return ServiceRules::groupNotFound(groupID);
    if (!conversation->members.contains(userID))
        return ServiceRules::notGroupMember(userID, groupID);
    return {};
}

QString MessagingServer::Private::conversationFor(
    const QString &sender, const QString &receiver, const QString &groupID)
{
    if (!groupID.isEmpty())
        return groupID;
    const QString id = ServiceRules::directConversationKey(sender, receiver);
    Conversation &conversation = conversations[id];
    conversation.isGroup = false;
    conversation.members = { sender, receiver };
    return id;
}

CallError MessagingServer::Private::checkSend(
    const QString &sender, const V2VORMessagePtr &message, const QString &receiver, const QString &groupID) const
{
    if (const CallError refused = ServiceRules::checkAddress(message, receiver, groupID))
        return refused;
    if (groupID.isEmpty() && !users.contains(receiver))
        return ServiceRules::userNotFound(receiver);
    if (!groupID.isEmpty()) {
        if (const CallError refused = checkConversation(sender, groupID))
            return refused;
    }
    return ServiceRules::checkBody(*message);
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
        return { ServiceRules::messageNotFound(message.msgID()) };
    if (!conversations.value(stored->conversation).members.contains(userID))
        return { ServiceRules::notMemberToModify() };
    if (const CallError refused = ServiceRules::checkBody(message))
        return { refused };
    if (message.messageVersion() < stored->message->messageVersion())
        return { ServiceRules::modifiedMeanwhile(), copyFor(message.msgID(), userID) };

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
        return { ServiceRules::noMessageAt(groupID, seq) };
    return { {}, ids.at(qsizetype(seq - 1)) };
}

CallError MessagingServer::Private::checkExtensionAccess(const QString &userID, const QString &msgID) const
{
    auto stored = messages.constFind(msgID);
    if (stored == messages.constEnd())
        return ServiceRules::messageNotFound(msgID);
    if (!stored->message->supportMessageExtension())
        return ServiceRules::extensionsNotSupported(msgID);
    if (!conversations.value(stored->conversation).members.contains(userID))
        return ServiceRules::notMemberOfMessageGroup(userID);
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

ExtensionReply MessagingServer::Private::setExtensions(const QString &userID, const QString &msgID,
    const QList<V2VORMessageExtension> &extensions, const QHash<QString, quint64> &seenVersions)
{
    ExtensionReply reply;
    reply.msgID = msgID;
    reply.error = ServiceRules::checkCallSize(extensions.size());
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
    reply.error = ServiceRules::checkCallSize(keys.size());
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
        copy->setUserID(ServiceRules::peerOf(conversations.value(stored->conversation).members, userID));
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
