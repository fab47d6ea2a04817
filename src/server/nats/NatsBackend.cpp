#include "server/nats/NatsBackend.h"

#include "platform/MainQueue.h"
#include "sdk/ExtensionStore.h"
#include "sdk/MessagingServerPrivate.h"
#include "sdk/ServiceProtocol.h"
#include "server/nats/NatsDirectory.h"
#include "server/nats/NatsExtensions.h"
#include "server/nats/NatsKeyCodec.h"
#include "server/nats/NatsStore.h"

#include <QJsonDocument>
#include <QUuid>

namespace {

CallError error(int code, const QString &desc)
{
    return { code, desc };
}

QString userOf(const MessagingSession *session)
{
    return session ? session->sessionUserID() : QString();
}

QByteArray messageKey(const QString &conversation, quint64 seq)
{
    return "m." + NatsKeyCodec::encode(conversation) + '.' + QByteArray::number(seq);
}

QByteArray indexKey(const QString &msgID)
{
    return "id." + NatsKeyCodec::encode(msgID);
}

QByteArray userSubject(const QString &userID)
{
    return "vor.user." + NatsKeyCodec::encode(userID);
}

QByteArray toBytes(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
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

CallError checkBody(const V2VORMessage &message)
{
    const qsizetype bytes = message.customElem() ? message.customElem()->data.size() : message.text().toUtf8().size();
    if (bytes > V2VORLimits::kMaxMessageBodyBytes)
        return error(V2VOR_ERR_MESSAGE_BODY_TOO_LARGE,
            QStringLiteral("message body of %1 bytes exceeds %2 bytes")
                .arg(bytes)
                .arg(V2VORLimits::kMaxMessageBodyBytes));
    return {};
}

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

QJsonObject event(const QString &name, const QJsonObject &data)
{
    return { { QStringLiteral("ev"), name }, { QStringLiteral("data"), data } };
}

/// Runs one event on a session, as the in-process service would.
void dispatch(MessagingSession *session, const QJsonObject &event)
{
    namespace P = ServiceProtocol;
    const QString name = event.value(QLatin1String("ev")).toString();
    const QJsonObject data = event.value(QLatin1String("data")).toObject();
    const QString msgID = data.value(QLatin1String("msgID")).toString();
    const auto versions
        = P::versionsFromJson(data.value(QLatin1String("versions"))).value_or(QHash<QString, quint64> {});
    if (name == QLatin1String("newMessage")) {
        if (V2VORMessagePtr message = P::messageFromJson(data.value(QLatin1String("message"))))
            session->receiveNewMessage(message);
    } else if (name == QLatin1String("modified")) {
        if (V2VORMessagePtr message = P::messageFromJson(data.value(QLatin1String("message"))))
            session->receiveModified(message);
    } else if (name == QLatin1String("extensionsChanged")) {
        if (auto extensions = P::extensionsFromJson(data.value(QLatin1String("extensions"))))
            session->receiveExtensionsChanged(msgID, *extensions, versions);
    } else if (name == QLatin1String("extensionsDeleted")) {
        if (auto keys = P::stringsFromJson(data.value(QLatin1String("keys"))))
            session->receiveExtensionsDeleted(msgID, *keys, versions);
    } else if (name == QLatin1String("conversationChanged")) {
        if (auto conversation = P::conversationFromJson(data.value(QLatin1String("conversation"))))
            session->receiveConversationChanged(*conversation);
    }
}

} // namespace

struct NatsBackend::Stored
{
    V2VORMessagePtr message;
    quint64 revision = 0;
};

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
    , m_extensions(std::make_unique<NatsExtensions>(*m_store))
{
}

NatsBackend::~NatsBackend() = default;

// Sessions and events.

void NatsBackend::attach(MessagingSession *session)
{
    if (!m_attached.contains(session))
        m_attached.append(session);
}

void NatsBackend::detach(MessagingSession *session)
{
    stopListening(session);
    m_attached.removeAll(session);
}

void NatsBackend::listen(MessagingSession *session, const QString &userID)
{
    stopListening(session);
    UserSubscription &subscription = m_subscriptions[userID];
    if (subscription.sessions++ == 0)
        subscription.id
            = m_store->subscribe(userSubject(userID), [this](const QByteArray &payload) { onRemoteEvent(payload); });
    m_listening.insert(session, userID);
}

void NatsBackend::stopListening(MessagingSession *session)
{
    auto listening = m_listening.find(session);
    if (listening == m_listening.end())
        return;
    auto subscription = m_subscriptions.find(*listening);
    if (subscription != m_subscriptions.end() && --subscription->sessions == 0) {
        m_store->unsubscribe(subscription->id);
        m_subscriptions.erase(subscription);
    }
    m_listening.erase(listening);
}

void NatsBackend::deliver(const QString &viewer, const QJsonObject &event, MessagingSession *except)
{
    const QList<MessagingSession *> current = m_attached;
    for (MessagingSession *session : current) {
        if (session != except && session->sessionUserID() == viewer)
            platform::MainQueue::async(session->sessionContext(), [session, event] { dispatch(session, event); });
    }
}

void NatsBackend::emitEvent(const QStringList &viewers, const EventFor &eventFor, MessagingSession *except)
{
    QStringList unique = viewers;
    unique.removeDuplicates();
    for (const QString &viewer : std::as_const(unique)) {
        const QJsonObject event = eventFor(viewer);
        deliver(viewer, event, except);
        QJsonObject envelope = event;
        envelope.insert(QStringLiteral("user"), viewer);
        m_store->publish(userSubject(viewer), toBytes(envelope));
    }
}

void NatsBackend::onRemoteEvent(const QByteArray &payload)
{
    const QJsonObject envelope = QJsonDocument::fromJson(payload).object();
    deliver(envelope.value(QLatin1String("user")).toString(), envelope, nullptr);
}

void NatsBackend::login(MessagingSession *session, const QString &userID, const QString &, Done done)
{
    answer(done, [&] {
        if (userID.isEmpty())
            return error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("login needs a user ID"));
        m_directory->ensureUser(userID);
        listen(session, userID);
        return CallError {};
    });
}

void NatsBackend::logout(MessagingSession *session, Done done)
{
    stopListening(session);
    if (done)
        done({});
}

QString NatsBackend::newMessageID()
{
    return QStringLiteral("msg-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
}

// Messages.

QStringList NatsBackend::membersOf(const QString &conversation)
{
    const auto found = m_directory->conversation(conversation);
    return found ? found->members : QStringList();
}

CallError NatsBackend::checkConversation(const QString &userID, const QString &groupID)
{
    if (!groupID.isEmpty() && m_directory->isMember(groupID, userID) && !groupID.startsWith(QLatin1String("c2c:")))
        return {};
    const auto group = groupID.isEmpty() ? std::nullopt : m_directory->conversation(groupID);
    if (!group || !group->isGroup)
        return error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("group \"%1\" does not exist").arg(groupID));
    return error(
        V2VOR_ERR_NOT_GROUP_MEMBER, QStringLiteral("user \"%1\" is not a member of group \"%2\"").arg(userID, groupID));
}

std::optional<NatsBackend::Home> NatsBackend::locate(const QString &msgID)
{
    auto cached = m_homes.constFind(msgID);
    if (cached != m_homes.constEnd())
        return *cached;
    const NatsStore::Entry index = m_store->get(NatsStore::Messages, indexKey(msgID));
    if (!index.ok())
        return std::nullopt;
    const QJsonObject object = QJsonDocument::fromJson(index.value).object();
    const QString conversation = object.value(QLatin1String("conversation")).toString();
    const quint64 seq = quint64(object.value(QLatin1String("seq")).toDouble());
    const std::optional<Stored> stored = load(conversation, seq);
    if (!stored)
        return std::nullopt;
    const Home home { conversation, seq, stored->message->supportMessageExtension() };
    m_homes.insert(msgID, home);
    return home;
}

std::optional<NatsBackend::Stored> NatsBackend::load(const QString &conversation, quint64 seq) const
{
    const NatsStore::Entry entry = m_store->get(NatsStore::Messages, messageKey(conversation, seq));
    if (!entry.ok())
        return std::nullopt;
    V2VORMessagePtr message = ServiceProtocol::messageFromJson(
        QJsonDocument::fromJson(entry.value).object().value(QLatin1String("message")));
    if (!message)
        return std::nullopt;
    return Stored { message, entry.revision };
}

V2VORMessagePtr NatsBackend::copyFor(const Stored &stored, const QString &conversation, const QString &viewer)
{
    V2VORMessagePtr copy = stored.message->clone();
    copy->setIsSelf(copy->sender() == viewer);
    if (copy->groupID().isEmpty()) {
        const QStringList members = membersOf(conversation);
        copy->setUserID(members.value(members.indexOf(viewer) == 0 ? 1 : 0));
    }
    return copy;
}

quint64 NatsBackend::topSeq(const QString &conversation)
{
    // Sequences are dense and never go away: search forward from the last one seen here.
    const auto exists
        = [&](quint64 seq) { return m_store->get(NatsStore::Messages, messageKey(conversation, seq)).ok(); };
    quint64 known = m_knownTop.value(conversation);
    quint64 step = 1;
    while (exists(known + step)) {
        known += step;
        step *= 2;
    }
    quint64 missing = known + step;
    while (missing - known > 1) {
        const quint64 middle = known + (missing - known) / 2;
        (exists(middle) ? known : missing) = middle;
    }
    m_knownTop.insert(conversation, known);
    return known;
}

quint64 NatsBackend::claimSeq(const QString &conversation, V2VORMessage &message)
{
    quint64 seq = topSeq(conversation);
    for (;;) {
        message.setSeq(++seq);
        const QJsonObject record { { QStringLiteral("conversation"), conversation },
            { QStringLiteral("message"), ServiceProtocol::toJson(message) } };
        if (m_store->update(NatsStore::Messages, messageKey(conversation, seq), toBytes(record), 0).ok())
            break;
    }
    m_knownTop.insert(conversation, seq);
    return seq;
}

void NatsBackend::send(MessagingSession *caller, const V2VORMessagePtr &message, const QString &receiver,
    const QString &groupID, const SendRecord &, Reply<V2VORMessagePtr> reply)
{
    answer(reply, [&]() -> ServiceReply<V2VORMessagePtr> {
        const QString sender = userOf(caller);
        if (message) {
            if (const std::optional<Home> home = locate(message->msgID())) {
                const std::optional<Stored> stored = load(home->conversation, home->seq);
                if (stored && stored->message->sender() == sender)
                    return { {}, copyFor(*stored, home->conversation, sender) };
                return { error(
                    V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("message ID \"%1\" is taken").arg(message->msgID())) };
            }
        }
        return storeNew(caller, sender, message, receiver, groupID);
    });
}

ServiceReply<V2VORMessagePtr> NatsBackend::storeNew(MessagingSession *caller, const QString &sender,
    const V2VORMessagePtr &message, const QString &receiver, const QString &groupID)
{
    if (!message)
        return { error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("no message to send")) };
    if (groupID.isEmpty() && receiver.isEmpty())
        return { error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("a message needs a receiver or a group")) };
    if (groupID.isEmpty() && !m_directory->user(receiver))
        return { error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("user \"%1\" does not exist").arg(receiver)) };
    if (!groupID.isEmpty()) {
        if (const CallError refused = checkConversation(sender, groupID))
            return { refused };
    }
    if (const CallError refused = checkBody(*message))
        return { refused };

    QString conversation = groupID;
    if (groupID.isEmpty()) {
        conversation = MessagingServer::Private::directConversationKey(sender, receiver);
        if (!m_directory->conversation(conversation)) {
            m_directory->changeConversation(conversation, [&](NatsDirectory::Conversation &direct) {
                direct.isGroup = false;
                direct.members = { sender, receiver };
            });
            m_directory->addMember(conversation, sender, {});
            m_directory->addMember(conversation, receiver, {});
        }
    }
    const NatsDirectory::User profile = m_directory->user(sender).value_or(NatsDirectory::User {});
    const V2VORMessagePtr stored = message->clone();
    stored->setGroupID(groupID);
    stored->setSender(sender);
    stored->setNickName(profile.nickName);
    stored->setFaceURL(profile.faceURL);
    stored->setTimestamp(platform::MainQueue::now());
    stored->setStatus(V2VOR_MSG_STATUS_SEND_SUCC);
    stored->setMessageVersion(0);
    const quint64 seq = claimSeq(conversation, *stored);
    m_store->update(NatsStore::Messages, indexKey(stored->msgID()),
        toBytes({ { QStringLiteral("conversation"), conversation }, { QStringLiteral("seq"), double(seq) } }), 0);
    m_homes.insert(stored->msgID(), { conversation, seq, stored->supportMessageExtension() });
    m_senders.insert(conversation + QLatin1Char('/') + QString::number(seq), sender);

    const Stored record { stored, 0 };
    const QStringList members = membersOf(conversation);
    emitEvent(
        members,
        [&](const QString &viewer) {
            return event(QStringLiteral("newMessage"),
                { { QStringLiteral("message"), ServiceProtocol::toJson(*copyFor(record, conversation, viewer)) } });
        },
        caller);
    m_directory->touch(conversation);
    publishConversation(conversation, members);
    return { {}, copyFor(record, conversation, sender) };
}

ServiceReply<QList<V2VORMessagePtr>> NatsBackend::historyOf(
    const QString &conversation, const QString &userID, int count, quint64 beforeSeq)
{
    const quint64 top = topSeq(conversation);
    QList<V2VORMessagePtr> found;
    quint64 seq = beforeSeq == 0 ? top : std::min(beforeSeq - 1, top);
    for (; seq >= 1 && found.size() < count; --seq) {
        if (const std::optional<Stored> stored = load(conversation, seq))
            found.append(copyFor(*stored, conversation, userID));
    }
    return { {}, found };
}

void NatsBackend::history(
    MessagingSession *caller, const QString &groupID, int count, quint64 beforeSeq, Reply<QList<V2VORMessagePtr>> reply)
{
    answer(reply, [&]() -> ServiceReply<QList<V2VORMessagePtr>> {
        if (const CallError refused = checkConversation(userOf(caller), groupID))
            return { refused };
        return historyOf(groupID, userOf(caller), count, beforeSeq);
    });
}

void NatsBackend::directHistory(
    MessagingSession *caller, const QString &peerID, int count, quint64 beforeSeq, Reply<QList<V2VORMessagePtr>> reply)
{
    answer(reply, [&]() -> ServiceReply<QList<V2VORMessagePtr>> {
        if (peerID.isEmpty() || !m_directory->user(peerID))
            return { error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("user \"%1\" does not exist").arg(peerID)) };
        return historyOf(
            MessagingServer::Private::directConversationKey(userOf(caller), peerID), userOf(caller), count, beforeSeq);
    });
}

void NatsBackend::modify(MessagingSession *caller, const V2VORMessage &message, Reply<V2VORMessagePtr> reply)
{
    answer(reply, [&]() -> ServiceReply<V2VORMessagePtr> {
        const QString userID = userOf(caller);
        const std::optional<Home> home = locate(message.msgID());
        if (!home)
            return { error(
                V2VOR_ERR_MESSAGE_NOT_FOUND, QStringLiteral("message \"%1\" does not exist").arg(message.msgID())) };
        if (!m_directory->isMember(home->conversation, userID))
            return { error(V2VOR_ERR_NOT_GROUP_MEMBER, QStringLiteral("only members may modify this message")) };
        if (const CallError refused = checkBody(message))
            return { refused };
        for (;;) {
            std::optional<Stored> stored = load(home->conversation, home->seq);
            if (!stored)
                return { error(V2VOR_ERR_MESSAGE_NOT_FOUND,
                    QStringLiteral("message \"%1\" does not exist").arg(message.msgID())) };
            if (message.messageVersion() < stored->message->messageVersion())
                return { error(V2VOR_ERR_MESSAGE_MODIFY_CONFLICT,
                             QStringLiteral("message was modified since this copy was taken")),
                    copyFor(*stored, home->conversation, userID) };
            if (message.customElem())
                stored->message->setCustomElem(std::make_unique<V2VORCustomElem>(*message.customElem()));
            stored->message->setText(message.text());
            stored->message->setMessageVersion(stored->message->messageVersion() + 1);
            const QJsonObject record { { QStringLiteral("conversation"), home->conversation },
                { QStringLiteral("message"), ServiceProtocol::toJson(*stored->message) } };
            // Someone else's modification landed first: look again, it decides the outcome.
            if (!m_store
                     ->update(NatsStore::Messages, messageKey(home->conversation, home->seq), toBytes(record),
                         stored->revision)
                     .ok())
                continue;
            emitEvent(membersOf(home->conversation), [&](const QString &viewer) {
                return event(QStringLiteral("modified"),
                    { { QStringLiteral("message"),
                        ServiceProtocol::toJson(*copyFor(*stored, home->conversation, viewer)) } });
            });
            return { {}, copyFor(*stored, home->conversation, userID) };
        }
    });
}

void NatsBackend::messageAt(MessagingSession *caller, const QString &groupID, quint64 seq, Reply<QString> reply)
{
    answer(reply, [&]() -> ServiceReply<QString> {
        if (const CallError refused = checkConversation(userOf(caller), groupID))
            return { refused };
        const std::optional<Stored> stored = seq < 1 ? std::nullopt : load(groupID, seq);
        if (!stored)
            return { error(V2VOR_ERR_MESSAGE_NOT_FOUND,
                QStringLiteral("group \"%1\" has no message with sequence %2").arg(groupID).arg(seq)) };
        return { {}, stored->message->msgID() };
    });
}

// Extensions.

CallError NatsBackend::checkExtensionAccess(const QString &userID, const QString &msgID, Home *home)
{
    const std::optional<Home> found = locate(msgID);
    if (!found)
        return error(V2VOR_ERR_MESSAGE_NOT_FOUND, QStringLiteral("message \"%1\" does not exist").arg(msgID));
    if (!found->supportsExtensions)
        return error(V2VOR_ERR_EXTENSION_NOT_SUPPORTED,
            QStringLiteral("message \"%1\" was not sent with extension support").arg(msgID));
    if (!m_directory->isMember(found->conversation, userID))
        return error(V2VOR_ERR_NOT_GROUP_MEMBER,
            QStringLiteral("user \"%1\" is not a member of the message's group").arg(userID));
    *home = *found;
    return {};
}

void NatsBackend::getExtensions(MessagingSession *caller, const QString &msgID, ExtensionDone done)
{
    answer(done, [&] {
        ExtensionReply reply;
        reply.msgID = msgID;
        Home home;
        reply.error = checkExtensionAccess(userOf(caller), msgID, &home);
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
        Home home;
        reply.error = checkCallSize(extensions.size());
        if (!reply.error)
            reply.error = checkExtensionAccess(userOf(caller), msgID, &home);
        if (reply.error)
            return reply;
        QList<V2VORMessageExtension> changed;
        QHash<QString, quint64> seen = seenVersions;
        for (const V2VORMessageExtension &extension : extensions) {
            const QString &key = extension.extensionKey;
            const NatsExtensions::Outcome outcome = m_extensions->set(msgID, extension, seen.value(key));
            if (outcome.changed)
                changed.append(extension);
            if (outcome.result.resultCode == V2VOR_SUCC
                || outcome.result.resultCode == V2VOR_ERR_EXTENSION_VERSION_CONFLICT) {
                seen.insert(key, outcome.version);
                reply.versions.insert(key, outcome.version);
            }
            reply.results.append(outcome.result);
        }
        publishExtensionChange(msgID, home.conversation, changed, {}, reply.versions);
        return reply;
    });
}

void NatsBackend::deleteExtensions(
    MessagingSession *caller, const QString &msgID, const QStringList &keys, ExtensionDone done)
{
    answer(done, [&] {
        ExtensionReply reply;
        reply.msgID = msgID;
        Home home;
        reply.error = checkCallSize(keys.size());
        if (!reply.error)
            reply.error = checkExtensionAccess(userOf(caller), msgID, &home);
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
        publishExtensionChange(msgID, home.conversation, {}, deleted, reply.versions);
        return reply;
    });
}

void NatsBackend::publishExtensionChange(const QString &msgID, const QString &conversation,
    const QList<V2VORMessageExtension> &changed, const QStringList &deleted, const QHash<QString, quint64> &versions)
{
    if (changed.isEmpty() && deleted.isEmpty())
        return;
    QJsonObject data { { QStringLiteral("msgID"), msgID },
        { QStringLiteral("versions"), ServiceProtocol::toJson(versions) } };
    if (!changed.isEmpty())
        data.insert(QStringLiteral("extensions"), ServiceProtocol::toJson(changed));
    else
        data.insert(QStringLiteral("keys"), QJsonArray::fromStringList(deleted));
    const QJsonObject shared
        = event(changed.isEmpty() ? QStringLiteral("extensionsDeleted") : QStringLiteral("extensionsChanged"), data);
    emitEvent(membersOf(conversation), [&](const QString &) { return shared; });
}

// Conversations, users and groups.

V2VORConversation NatsBackend::conversationAs(const QString &key, const QString &viewer)
{
    const NatsDirectory::Conversation conversation
        = m_directory->conversation(key).value_or(NatsDirectory::Conversation {});
    V2VORConversation seen;
    seen.type = conversation.isGroup ? V2VOR_GROUP : V2VOR_C2C;
    if (conversation.isGroup) {
        seen.groupID = key;
        seen.conversationID = QStringLiteral("group_") + key;
        seen.showName = conversation.name.isEmpty() ? key : conversation.name;
        seen.faceURL = conversation.faceURL;
    } else {
        const QStringList &members = conversation.members;
        seen.userID = members.value(members.indexOf(viewer) == 0 ? 1 : 0);
        seen.conversationID = QStringLiteral("c2c_") + seen.userID;
        const NatsDirectory::User peer = m_directory->user(seen.userID).value_or(NatsDirectory::User {});
        seen.showName = peer.nickName.isEmpty() ? seen.userID : peer.nickName;
        seen.faceURL = peer.faceURL;
    }
    const quint64 top = topSeq(key);
    for (quint64 seq = m_directory->readSeq(key, viewer) + 1; seq <= top; ++seq) {
        const QString at = key + QLatin1Char('/') + QString::number(seq);
        if (!m_senders.contains(at)) {
            if (const std::optional<Stored> stored = load(key, seq))
                m_senders.insert(at, stored->message->sender());
        }
        if (m_senders.value(at) != viewer)
            ++seen.unreadCount;
    }
    if (const std::optional<Stored> last = top ? load(key, top) : std::nullopt)
        seen.lastMessage = copyFor(*last, key, viewer);
    seen.orderKey = m_directory->orderKey(key);
    return seen;
}

void NatsBackend::publishConversation(const QString &conversation, const QStringList &viewers)
{
    emitEvent(viewers, [&](const QString &viewer) {
        return event(QStringLiteral("conversationChanged"),
            { { QStringLiteral("conversation"), ServiceProtocol::toJson(conversationAs(conversation, viewer)) } });
    });
}

void NatsBackend::conversationList(MessagingSession *caller, Reply<QList<V2VORConversation>> reply)
{
    answer(reply, [&] {
        QList<V2VORConversation> list;
        for (const QString &key : m_directory->conversationsOf(userOf(caller)))
            list.append(conversationAs(key, userOf(caller)));
        std::sort(list.begin(), list.end(), [](const V2VORConversation &a, const V2VORConversation &b) {
            return a.orderKey != b.orderKey ? a.orderKey > b.orderKey : a.conversationID < b.conversationID;
        });
        return ServiceReply<QList<V2VORConversation>> { {}, list };
    });
}

void NatsBackend::groupsInfo(MessagingSession *caller, const QStringList &groupIDs, Reply<QList<V2VORGroupInfo>> reply)
{
    answer(reply, [&] {
        QList<V2VORGroupInfo> found;
        for (const QString &groupID : groupIDs) {
            if (!checkConversation(userOf(caller), groupID)) {
                const auto group = m_directory->conversation(groupID).value_or(NatsDirectory::Conversation {});
                found.append({ groupID, group.name, group.faceURL });
            }
        }
        return ServiceReply<QList<V2VORGroupInfo>> { {}, found };
    });
}

void NatsBackend::markRead(const QString &conversation, const QString &userID)
{
    const quint64 last = topSeq(conversation);
    if (m_directory->readSeq(conversation, userID) == last)
        return;
    m_directory->setReadSeq(conversation, userID, last);
    publishConversation(conversation, { userID });
}

void NatsBackend::markGroupRead(MessagingSession *caller, const QString &groupID, Done done)
{
    answer(done, [&] {
        const CallError refused = checkConversation(userOf(caller), groupID);
        if (!refused)
            markRead(groupID, userOf(caller));
        return refused;
    });
}

void NatsBackend::markDirectRead(MessagingSession *caller, const QString &peerID, Done done)
{
    answer(done, [&] {
        if (peerID.isEmpty() || !m_directory->user(peerID))
            return error(V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("user \"%1\" does not exist").arg(peerID));
        const QString key = MessagingServer::Private::directConversationKey(userOf(caller), peerID);
        if (m_directory->conversation(key))
            markRead(key, userOf(caller));
        return CallError {};
    });
}

void NatsBackend::members(MessagingSession *caller, const QString &groupID, const QStringList &memberIDs,
    Reply<QList<V2VORGroupMemberFullInfo>> reply)
{
    answer(reply, [&]() -> ServiceReply<QList<V2VORGroupMemberFullInfo>> {
        const QString userID = userOf(caller);
        if (const CallError refused = checkConversation(userID, groupID))
            return { refused };
        const NatsDirectory::Conversation group
            = m_directory->conversation(groupID).value_or(NatsDirectory::Conversation {});
        QList<V2VORGroupMemberFullInfo> found;
        for (const QString &memberID : memberIDs.isEmpty() ? group.members : memberIDs) {
            if (!group.members.contains(memberID))
                continue;
            const NatsDirectory::User user = m_directory->user(memberID).value_or(NatsDirectory::User {});
            found.append({ memberID, user.nickName, user.faceURL, group.nameCards.value(memberID),
                m_directory->remark(userID, memberID) });
        }
        return { {}, found };
    });
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
