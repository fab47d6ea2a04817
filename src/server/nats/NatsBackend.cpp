#include "server/nats/NatsBackend.h"

#include "sdk/ServiceRules.h"
#include "server/nats/NatsChange.h"
#include "server/nats/NatsConversations.h"
#include "server/nats/NatsDirectory.h"
#include "server/nats/NatsEvents.h"
#include "server/nats/NatsExtensions.h"
#include "server/nats/NatsMessages.h"
#include "server/nats/NatsStore.h"

#include <QUuid>

namespace {

QString userOf(const MessagingSession *session)
{
    return session ? session->sessionUserID() : QString();
}

template<typename Callback> struct AnswerOf;
template<typename A> struct AnswerOf<std::function<void(const A &)>>
{
    using type = A;
};

/// Runs `call` and answers its outcome, or that the store could not be reached.
template<typename Callback, typename Call> void answer(const Callback &callback, Call call)
{
    using Arg = typename AnswerOf<Callback>::type;
    Arg outcome {};
    try {
        outcome = call();
    } catch (const NatsStore::Unavailable &unavailable) {
        const CallError down { V2VOR_ERR_SERVICE_UNAVAILABLE,
            QStringLiteral("the message store is unavailable: %1").arg(unavailable.reason) };
        if constexpr (std::is_same_v<Arg, CallError>)
            outcome = down;
        else
            outcome.error = down;
    }
    if (callback)
        callback(outcome);
}

} // namespace

std::unique_ptr<NatsBackend> NatsBackend::create(const QString &natsURL, QString *error)
{
    std::unique_ptr<NatsStore> store = NatsStore::connect(natsURL, error);
    if (!store)
        return nullptr;
    return std::unique_ptr<NatsBackend>(new NatsBackend(std::move(store)));
}

NatsBackend::NatsBackend(std::unique_ptr<NatsStore> store)
    : m_store(std::move(store))
    , m_directory(std::make_unique<NatsDirectory>(*m_store))
    , m_events(std::make_unique<NatsEvents>(*m_store, *m_directory))
    , m_extensions(std::make_unique<NatsExtensions>(*m_store))
    , m_messages(std::make_unique<NatsMessages>(*m_store, *m_directory, *m_events))
    , m_conversations(std::make_unique<NatsConversations>(*m_directory, *m_messages, *m_events))
{
    m_events->setRemoteObserver([this](const NatsChange &change) { learnExtensions(change); });
}

NatsBackend::~NatsBackend() = default;

// Sessions.

void NatsBackend::attach(MessagingSession *session)
{
    m_events->attach(session);
}

void NatsBackend::detach(MessagingSession *session)
{
    m_events->detach(session);
}

void NatsBackend::login(MessagingSession *session, const QString &userID, const QString &, Done done)
{
    answer(done, [&] {
        if (userID.isEmpty())
            return CallError { V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("login needs a user ID") };
        m_directory->ensureUser(userID);
        m_events->listen(session, userID);
        return CallError {};
    });
}

void NatsBackend::logout(MessagingSession *session, Done done)
{
    m_events->stopListening(session);
    if (done)
        done({});
}

QString NatsBackend::newMessageID()
{
    return QStringLiteral("msg-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
}

// Messages.

void NatsBackend::send(MessagingSession *caller, const V2VORMessagePtr &message, const QString &receiver,
    const QString &groupID, const SendRecord &, Reply<V2VORMessagePtr> reply)
{
    answer(reply, [&] {
        QString conversation;
        const ServiceReply<V2VORMessagePtr> sent = m_messages->send(caller, message, receiver, groupID, &conversation);
        if (!conversation.isEmpty())
            m_conversations->touched(conversation);
        return sent;
    });
}

void NatsBackend::history(
    MessagingSession *caller, const QString &groupID, int count, quint64 beforeSeq, Reply<QList<V2VORMessagePtr>> reply)
{
    answer(reply, [&]() -> ServiceReply<QList<V2VORMessagePtr>> {
        if (const CallError refused = m_directory->checkGroupMember(userOf(caller), groupID))
            return { refused };
        return m_messages->history(groupID, userOf(caller), count, beforeSeq);
    });
}

void NatsBackend::directHistory(
    MessagingSession *caller, const QString &peerID, int count, quint64 beforeSeq, Reply<QList<V2VORMessagePtr>> reply)
{
    answer(reply, [&]() -> ServiceReply<QList<V2VORMessagePtr>> {
        if (peerID.isEmpty() || !m_directory->user(peerID))
            return { ServiceRules::userNotFound(peerID) };
        return m_messages->history(
            ServiceRules::directConversationKey(userOf(caller), peerID), userOf(caller), count, beforeSeq);
    });
}

void NatsBackend::modify(MessagingSession *caller, const V2VORMessage &message, Reply<V2VORMessagePtr> reply)
{
    answer(reply, [&] { return m_messages->modify(userOf(caller), message); });
}

void NatsBackend::messageAt(MessagingSession *caller, const QString &groupID, quint64 seq, Reply<QString> reply)
{
    answer(reply, [&]() -> ServiceReply<QString> {
        if (const CallError refused = m_directory->checkGroupMember(userOf(caller), groupID))
            return { refused };
        const auto stored = seq < 1 ? std::nullopt : m_messages->load(groupID, seq);
        if (!stored)
            return { ServiceRules::noMessageAt(groupID, seq) };
        return { {}, stored->message->msgID() };
    });
}

// Extensions.

CallError NatsBackend::checkExtensionAccess(const QString &userID, const QString &msgID, QString *conversation)
{
    const std::optional<NatsMessages::Home> home = m_messages->locate(msgID);
    if (!home)
        return ServiceRules::messageNotFound(msgID);
    if (!home->supportsExtensions)
        return ServiceRules::extensionsNotSupported(msgID);
    if (!m_directory->isMember(home->conversation, userID))
        return ServiceRules::notMemberOfMessageGroup(userID);
    *conversation = home->conversation;
    return {};
}

void NatsBackend::getExtensions(MessagingSession *caller, const QString &msgID, ExtensionDone done)
{
    answer(done, [&] {
        ExtensionReply reply;
        reply.msgID = msgID;
        QString conversation;
        reply.error = checkExtensionAccess(userOf(caller), msgID, &conversation);
        if (!reply.error)
            reply.extensions = m_extensions->list(msgID, &reply.versions);
        return reply;
    });
}

void NatsBackend::setExtensions(MessagingSession *caller, const QString &msgID,
    const QList<V2VORMessageExtension> &extensions, const QHash<QString, quint64> &seenVersions, ExtensionDone done)
{
    answer(done, [&] {
        ExtensionReply reply;
        reply.msgID = msgID;
        QString conversation;
        reply.error = ServiceRules::checkCallSize(extensions.size());
        if (!reply.error)
            reply.error = checkExtensionAccess(userOf(caller), msgID, &conversation);
        if (reply.error)
            return reply;
        QList<V2VORMessageExtension> changed;
        QHash<QString, quint64> firstWritten;
        QHash<QString, quint64> seen = seenVersions;
        for (const V2VORMessageExtension &extension : extensions) {
            const QString &key = extension.extensionKey;
            const NatsExtensions::Outcome outcome = m_extensions->set(msgID, extension, seen.value(key));
            if (outcome.changed) {
                changed.append(extension);
                firstWritten.insert(key, outcome.firstWritten);
            }
            if (outcome.result.resultCode == V2VOR_SUCC
                || outcome.result.resultCode == V2VOR_ERR_EXTENSION_VERSION_CONFLICT) {
                seen.insert(key, outcome.version);
                reply.versions.insert(key, outcome.version);
            }
            reply.results.append(outcome.result);
        }
        publishExtensionChange(msgID, conversation, changed, {}, reply.versions, firstWritten);
        return reply;
    });
}

void NatsBackend::deleteExtensions(
    MessagingSession *caller, const QString &msgID, const QStringList &keys, ExtensionDone done)
{
    answer(done, [&] {
        ExtensionReply reply;
        reply.msgID = msgID;
        QString conversation;
        reply.error = ServiceRules::checkCallSize(keys.size());
        if (!reply.error)
            reply.error = checkExtensionAccess(userOf(caller), msgID, &conversation);
        if (reply.error)
            return reply;
        QStringList deleted;
        for (const QString &key : keys) {
            const NatsExtensions::Outcome outcome = m_extensions->remove(msgID, key);
            if (outcome.changed) {
                deleted.append(key);
                reply.versions.insert(key, outcome.version);
            }
            reply.results.append(outcome.result);
        }
        publishExtensionChange(msgID, conversation, {}, deleted, reply.versions);
        return reply;
    });
}

void NatsBackend::publishExtensionChange(const QString &msgID, const QString &conversation,
    const QList<V2VORMessageExtension> &changed, const QStringList &deleted, const QHash<QString, quint64> &versions,
    const QHash<QString, quint64> &firstWritten)
{
    if (changed.isEmpty() && deleted.isEmpty())
        return;
    NatsChange change;
    change.kind = changed.isEmpty() ? NatsChange::ExtensionsDeleted : NatsChange::ExtensionsChanged;
    change.conversation = conversation;
    change.msgID = msgID;
    change.extensions = changed;
    change.keys = deleted;
    change.versions = versions;
    change.firstWritten = firstWritten;
    m_events->emitChange(change);
}

void NatsBackend::learnExtensions(const NatsChange &change)
{
    const bool deleted = change.kind == NatsChange::ExtensionsDeleted;
    if (!deleted && change.kind != NatsChange::ExtensionsChanged)
        return;
    for (auto version = change.versions.cbegin(); version != change.versions.cend(); ++version) {
        // A key answered as a conflict was not written: nothing is known of its first write.
        if (deleted || change.firstWritten.contains(version.key()))
            m_extensions->learn(
                change.msgID, version.key(), version.value(), deleted ? 0 : change.firstWritten.value(version.key()));
    }
}

// Conversations and users.

void NatsBackend::conversationList(MessagingSession *caller, Reply<QList<V2VORConversation>> reply)
{
    answer(reply, [&] { return ServiceReply<QList<V2VORConversation>> { {}, m_conversations->list(userOf(caller)) }; });
}

void NatsBackend::groupsInfo(MessagingSession *caller, const QStringList &groupIDs, Reply<QList<V2VORGroupInfo>> reply)
{
    answer(reply, [&] {
        return ServiceReply<QList<V2VORGroupInfo>> { {}, m_conversations->groupsInfo(userOf(caller), groupIDs) };
    });
}

void NatsBackend::markGroupRead(MessagingSession *caller, const QString &groupID, Done done)
{
    answer(done, [&] { return m_conversations->markGroupRead(userOf(caller), groupID); });
}

void NatsBackend::markDirectRead(MessagingSession *caller, const QString &peerID, Done done)
{
    answer(done, [&] { return m_conversations->markDirectRead(userOf(caller), peerID); });
}

void NatsBackend::members(MessagingSession *caller, const QString &groupID, const QStringList &memberIDs,
    Reply<QList<V2VORGroupMemberFullInfo>> reply)
{
    answer(reply, [&] { return m_conversations->members(userOf(caller), groupID, memberIDs); });
}

void NatsBackend::usersInfo(MessagingSession *, const QStringList &userIDs, Reply<QList<V2VORUserFullInfo>> reply)
{
    answer(reply, [&] {
        QList<V2VORUserFullInfo> found;
        for (const QString &userID : userIDs) {
            if (const auto user = m_directory->user(userID))
                found.append({ userID, user->nickName, user->faceURL });
        }
        return ServiceReply<QList<V2VORUserFullInfo>> { {}, found };
    });
}

// The directory; who may change it is decided by the server in front.

void NatsBackend::addUser(
    MessagingSession *, const QString &userID, const QString &nickName, const QString &faceURL, Done done)
{
    answer(done, [&] {
        m_directory->putUser(userID, { nickName, faceURL });
        return CallError {};
    });
}

void NatsBackend::createGroup(MessagingSession *, const QString &groupID, const QStringList &memberIDs, Done done)
{
    answer(done, [&] {
        if (m_directory->changeConversation(groupID, [](NatsDirectory::Conversation &group) { group.isGroup = true; }))
            m_directory->touch(groupID);
        for (const QString &memberID : memberIDs)
            m_directory->addMember(groupID, memberID, {});
        return CallError {};
    });
}

void NatsBackend::setGroupInfo(
    MessagingSession *, const QString &groupID, const QString &groupName, const QString &faceURL, Done done)
{
    answer(done, [&] {
        m_directory->changeConversation(groupID, [&](NatsDirectory::Conversation &group) {
            group.name = groupName;
            group.faceURL = faceURL;
        });
        return CallError {};
    });
}

void NatsBackend::addGroupMember(
    MessagingSession *, const QString &groupID, const QString &userID, const QString &nameCard, Done done)
{
    answer(done, [&] {
        m_directory->addMember(groupID, userID, nameCard);
        return CallError {};
    });
}

void NatsBackend::setNameCard(
    MessagingSession *, const QString &groupID, const QString &userID, const QString &nameCard, Done done)
{
    answer(done, [&] {
        m_directory->changeConversation(
            groupID, [&](NatsDirectory::Conversation &group) { group.nameCards.insert(userID, nameCard); });
        return CallError {};
    });
}

void NatsBackend::setFriendRemark(
    MessagingSession *, const QString &viewerID, const QString &targetID, const QString &remark, Done done)
{
    answer(done, [&] {
        m_directory->setRemark(viewerID, targetID, remark);
        return CallError {};
    });
}
