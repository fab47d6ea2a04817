#include "sdk/LocalBackend.h"

#include "sdk/MessagingServer.h"
#include "sdk/MessagingServerPrivate.h"

struct LocalBackend::Access
{
    static MessagingServer::Private *of(const QPointer<MessagingServer> &server)
    {
        return server ? server->d.get() : nullptr;
    }
};

namespace {

const CallError kGone { V2VOR_ERR_NOT_LOGGED_IN, QStringLiteral("the messaging service is gone") };

QString userOf(const MessagingSession *session)
{
    return session ? session->sessionUserID() : QString();
}

template<typename Callback> struct AnswerOf;
template<typename A> struct AnswerOf<std::function<void(const A &)>>
{
    using type = A;
};

/// Runs `call` on the service, or answers that it is gone.
template<typename Callback, typename Call>
void withService(MessagingServer::Private *service, const Callback &callback, Call call)
{
    using Arg = typename AnswerOf<Callback>::type;
    if (!service) {
        Arg gone {};
        if constexpr (std::is_same_v<Arg, CallError>)
            gone = kGone;
        else
            gone.error = kGone;
        if (callback)
            callback(gone);
        return;
    }
    auto answer = call(*service);
    if (callback)
        callback(answer);
}

} // namespace


LocalBackend::LocalBackend(MessagingServer *server)
    : m_server(server)
{
}

LocalBackend::~LocalBackend()
{
    if (MessagingServer::Private *service = Access::of(m_server)) {
        for (MessagingSession *session : std::as_const(m_attached))
            service->sessions.removeAll(session);
    }
}

MessagingServer *LocalBackend::server() const
{
    return m_server;
}

V2VORMessagePtr LocalBackend::currentCopy(const QString &msgID, const QString &userID) const
{
    MessagingServer::Private *service = Access::of(m_server);
    return service ? service->copyFor(msgID, userID) : nullptr;
}

void LocalBackend::attach(MessagingSession *session)
{
    MessagingServer::Private *service = Access::of(m_server);
    if (!service || m_attached.contains(session))
        return;
    m_attached.append(session);
    service->sessions.append(session);
}

void LocalBackend::detach(MessagingSession *session)
{
    m_attached.removeAll(session);
    if (MessagingServer::Private *service = Access::of(m_server))
        service->sessions.removeAll(session);
}

void LocalBackend::login(MessagingSession *, const QString &userID, const QString &, Done done)
{
    withService(Access::of(m_server), done, [&](MessagingServer::Private &) {
        if (userID.isEmpty())
            return CallError { V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("login needs a user ID") };
        // The embedded service trusts its process: a user it has never seen is created.
        if (!m_server->hasUser(userID))
            m_server->addUser(userID);
        return CallError {};
    });
}

void LocalBackend::logout(MessagingSession *, Done done)
{
    withService(Access::of(m_server), done, [](MessagingServer::Private &) { return CallError {}; });
}

std::optional<CallError> LocalBackend::admit(const QStringList &operations)
{
    MessagingServer::Private *service = Access::of(m_server);
    if (!service)
        return kGone;
    return service->admit(operations);
}

QString LocalBackend::newMessageID()
{
    MessagingServer::Private *service = Access::of(m_server);
    if (!service)
        return {};
    QString msgID;
    do
        msgID = service->newMessageID();
    while (service->messages.contains(msgID));
    return msgID;
}

void LocalBackend::send(MessagingSession *caller, const V2VORMessagePtr &message, const QString &receiver,
    const QString &groupID, const SendRecord &record, Reply<V2VORMessagePtr> reply)
{
    withService(Access::of(m_server), reply, [&](MessagingServer::Private &service) {
        if (message && service.messages.contains(message->msgID())) {
            const V2VORMessagePtr stored = service.messages.value(message->msgID()).message;
            if (stored->sender() == userOf(caller))
                return ServiceReply<V2VORMessagePtr> { {}, service.copyFor(message->msgID(), userOf(caller)) };
            return ServiceReply<V2VORMessagePtr> { { V2VOR_ERR_INVALID_PARAMETERS,
                QStringLiteral("message ID \"%1\" is taken").arg(message->msgID()) } };
        }
        return service.send(caller, userOf(caller), message, receiver, groupID, record);
    });
}

void LocalBackend::history(MessagingSession *caller, const QString &groupID, int count, quint64 beforeSeq,
    Reply<QList<V2VORMessagePtr>> reply)
{
    withService(Access::of(m_server), reply, [&](MessagingServer::Private &service) {
        return service.history(userOf(caller), groupID, count, beforeSeq);
    });
}

void LocalBackend::directHistory(MessagingSession *caller, const QString &peerID, int count, quint64 beforeSeq,
    Reply<QList<V2VORMessagePtr>> reply)
{
    withService(Access::of(m_server), reply, [&](MessagingServer::Private &service) {
        return service.directHistory(userOf(caller), peerID, count, beforeSeq);
    });
}

void LocalBackend::modify(MessagingSession *caller, const V2VORMessage &message, Reply<V2VORMessagePtr> reply)
{
    withService(Access::of(m_server), reply,
        [&](MessagingServer::Private &service) { return service.modify(userOf(caller), message); });
}

void LocalBackend::messageAt(MessagingSession *caller, const QString &groupID, quint64 seq, Reply<QString> reply)
{
    withService(Access::of(m_server), reply,
        [&](MessagingServer::Private &service) { return service.messageAt(userOf(caller), groupID, seq); });
}

void LocalBackend::getExtensions(MessagingSession *caller, const QString &msgID, ExtensionDone done)
{
    withService(Access::of(m_server), done,
        [&](MessagingServer::Private &service) { return service.getExtensions(userOf(caller), msgID); });
}

void LocalBackend::setExtensions(MessagingSession *caller, const QString &msgID,
    const QList<V2VORMessageExtension> &extensions, const QHash<QString, quint64> &seenVersions, ExtensionDone done)
{
    withService(Access::of(m_server), done, [&](MessagingServer::Private &service) {
        return service.setExtensions(userOf(caller), msgID, extensions, seenVersions);
    });
}

void LocalBackend::deleteExtensions(
    MessagingSession *caller, const QString &msgID, const QStringList &keys, ExtensionDone done)
{
    withService(Access::of(m_server), done,
        [&](MessagingServer::Private &service) { return service.deleteExtensions(userOf(caller), msgID, keys); });
}

void LocalBackend::conversationList(MessagingSession *caller, Reply<QList<V2VORConversation>> reply)
{
    withService(Access::of(m_server), reply, [&](MessagingServer::Private &service) {
        return ServiceReply<QList<V2VORConversation>> { {}, service.conversationList(userOf(caller)) };
    });
}

void LocalBackend::groupsInfo(
    MessagingSession *caller, const QStringList &groupIDs, Reply<QList<V2VORGroupInfo>> reply)
{
    withService(Access::of(m_server), reply, [&](MessagingServer::Private &service) {
        return ServiceReply<QList<V2VORGroupInfo>> { {}, service.groupsInfo(userOf(caller), groupIDs) };
    });
}

void LocalBackend::markGroupRead(MessagingSession *caller, const QString &groupID, Done done)
{
    withService(Access::of(m_server), done,
        [&](MessagingServer::Private &service) { return service.markGroupRead(userOf(caller), groupID); });
}

void LocalBackend::markDirectRead(MessagingSession *caller, const QString &peerID, Done done)
{
    withService(Access::of(m_server), done,
        [&](MessagingServer::Private &service) { return service.markDirectRead(userOf(caller), peerID); });
}

void LocalBackend::members(MessagingSession *caller, const QString &groupID, const QStringList &memberIDs,
    Reply<QList<V2VORGroupMemberFullInfo>> reply)
{
    withService(Access::of(m_server), reply,
        [&](MessagingServer::Private &service) { return service.members(userOf(caller), groupID, memberIDs); });
}

void LocalBackend::usersInfo(
    MessagingSession *, const QStringList &userIDs, Reply<QList<V2VORUserFullInfo>> reply)
{
    withService(Access::of(m_server), reply, [&](MessagingServer::Private &service) {
        return ServiceReply<QList<V2VORUserFullInfo>> { {}, service.usersInfo(userIDs) };
    });
}

// The embedded service has no operators to tell apart: whoever holds it keeps its directory.

void LocalBackend::addUser(
    MessagingSession *, const QString &userID, const QString &nickName, const QString &faceURL, Done done)
{
    withService(Access::of(m_server), done, [&](MessagingServer::Private &) {
        m_server->addUser(userID, nickName, faceURL);
        return CallError {};
    });
}

void LocalBackend::createGroup(MessagingSession *, const QString &groupID, const QStringList &memberIDs, Done done)
{
    withService(Access::of(m_server), done, [&](MessagingServer::Private &) {
        m_server->createGroup(groupID, memberIDs);
        return CallError {};
    });
}

void LocalBackend::setGroupInfo(
    MessagingSession *, const QString &groupID, const QString &groupName, const QString &faceURL, Done done)
{
    withService(Access::of(m_server), done, [&](MessagingServer::Private &) {
        m_server->setGroupInfo(groupID, groupName, faceURL);
        return CallError {};
    });
}

void LocalBackend::addGroupMember(
    MessagingSession *, const QString &groupID, const QString &userID, const QString &nameCard, Done done)
{
    withService(Access::of(m_server), done, [&](MessagingServer::Private &) {
        m_server->addGroupMember(groupID, userID, nameCard);
        return CallError {};
    });
}

void LocalBackend::setNameCard(
    MessagingSession *, const QString &groupID, const QString &userID, const QString &nameCard, Done done)
{
    withService(Access::of(m_server), done, [&](MessagingServer::Private &) {
        m_server->setNameCard(groupID, userID, nameCard);
        return CallError {};
    });
}

void LocalBackend::setFriendRemark(
    MessagingSession *, const QString &viewerID, const QString &targetID, const QString &remark, Done done)
{
    withService(Access::of(m_server), done, [&](MessagingServer::Private &) {
        m_server->setFriendRemark(viewerID, targetID, remark);
        return CallError {};
    });
}
