#include "sdk/MessagingServer.h"

#include "platform/MainQueue.h"
#include "sdk/MessagingServerPrivate.h"

MessagingServer::MessagingServer(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{
}

MessagingServer::~MessagingServer() = default;

void MessagingServer::addUser(const QString &userID, const QString &nickName, const QString &faceURL)
{
    d->users.insert(userID, { nickName, faceURL });
}

bool MessagingServer::hasUser(const QString &userID) const
{
    return d->users.contains(userID);
}

void MessagingServer::createGroup(const QString &groupID, const QStringList &memberIDs)
{
    const bool isNew = !d->conversations.contains(groupID);
    Private::Conversation &group = d->conversations[groupID];
    group.isGroup = true;
    if (isNew)
        group.orderKey = ++d->activityCounter;
    for (const QString &memberID : memberIDs)
        addGroupMember(groupID, memberID);
}

void MessagingServer::setGroupInfo(const QString &groupID, const QString &groupName, const QString &faceURL)
{
    Private::Conversation &group = d->conversations[groupID];
    group.name = groupName;
    group.faceURL = faceURL;
}

void MessagingServer::addGroupMember(const QString &groupID, const QString &userID, const QString &nameCard)
{
    Private::Conversation &group = d->conversations[groupID];
    if (!group.members.contains(userID))
        group.members.append(userID);
    if (!nameCard.isEmpty())
        group.nameCards.insert(userID, nameCard);
    if (!hasUser(userID))
        addUser(userID);
}

void MessagingServer::setNameCard(const QString &groupID, const QString &userID, const QString &nameCard)
{
    d->conversations[groupID].nameCards.insert(userID, nameCard);
}

void MessagingServer::setFriendRemark(const QString &viewerID, const QString &targetID, const QString &remark)
{
    d->friendRemarks[viewerID].insert(targetID, remark);
}

bool MessagingServer::isGroupMember(const QString &groupID, const QString &userID) const
{
    auto group = d->conversations.constFind(groupID);
    return group != d->conversations.constEnd() && group->isGroup && group->members.contains(userID);
}

void MessagingServer::failNextCall(const QString &operation, int code, const QString &desc)
{
    d->failures[operation].append({ code, desc });
}

void MessagingServer::failNextKey(const QString &key, int code, const QString &desc)
{
    d->keyFailures.insert(key, { code, desc });
}

void MessagingServer::holdEvents()
{
    d->holding = true;
}

void MessagingServer::releaseEvents()
{
    d->holding = false;
    const QList<Private::HeldEvent> held = std::exchange(d->heldEvents, {});
    for (const Private::HeldEvent &event : held) {
        if (event.context)
            platform::MainQueue::async(event.context.data(), event.task);
    }
}

int MessagingServer::heldEventCount() const
{
    return int(d->heldEvents.size());
}

int MessagingServer::callCount(const QString &operation) const
{
    return d->callCounts.value(operation);
}

QList<V2VORMessageExtension> MessagingServer::extensionsOf(const QString &msgID) const
{
    return d->messages.value(msgID).extensions.list();
}

QList<V2VORMessagePtr> MessagingServer::groupMessages(const QString &groupID) const
{
    QList<V2VORMessagePtr> copies;
    for (const QString &msgID : d->conversations.value(groupID).messageIDs)
        copies.append(d->messages.value(msgID).message->clone());
    return copies;
}

V2VORMessagePtr MessagingServer::messageByID(const QString &msgID) const
{
    auto stored = d->messages.constFind(msgID);
    return stored == d->messages.constEnd() ? nullptr : stored->message->clone();
}

std::optional<MessagingServer::SendRecord> MessagingServer::sendRecord(const QString &msgID) const
{
    auto stored = d->messages.constFind(msgID);
    if (stored == d->messages.constEnd())
        return std::nullopt;
    return stored->record;
}
