#include "server/nats/NatsMessages.h"

#include "platform/MainQueue.h"
#include "sdk/ServiceProtocol.h"
#include "sdk/ServiceRules.h"
#include "sdk/V2VORCustomElem.h"
#include "server/nats/NatsChange.h"
#include "server/nats/NatsDirectory.h"
#include "server/nats/NatsEvents.h"
#include "server/nats/NatsKeyCodec.h"
#include "server/nats/NatsStore.h"

#include <QJsonDocument>

namespace {

QByteArray messageKey(const QString &conversation, quint64 seq)
{
    return "m." + NatsKeyCodec::encode(conversation) + '.' + QByteArray::number(seq);
}

QByteArray indexKey(const QString &msgID)
{
    return "id." + NatsKeyCodec::encode(msgID);
}

QByteArray toBytes(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray recordOf(const QString &conversation, const V2VORMessage &message)
{
    return toBytes({ { QStringLiteral("conversation"), conversation },
        { QStringLiteral("message"), ServiceProtocol::toJson(message) } });
}

QString senderKey(const QString &conversation, quint64 seq)
{
    return conversation + QLatin1Char('/') + QString::number(seq);
}

} // namespace

NatsMessages::NatsMessages(NatsStore &store, NatsDirectory &directory, NatsEvents &events)
    : m_store(store)
    , m_directory(directory)
    , m_events(events)
{
}

std::optional<NatsMessages::Home> NatsMessages::locate(const QString &msgID)
{
    auto cached = m_homes.constFind(msgID);
    if (cached != m_homes.constEnd())
        return *cached;
    const NatsStore::Entry index = m_store.get(NatsStore::Messages, indexKey(msgID));
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

std::optional<NatsMessages::Stored> NatsMessages::load(const QString &conversation, quint64 seq) const
{
    const NatsStore::Entry entry = m_store.get(NatsStore::Messages, messageKey(conversation, seq));
    if (!entry.ok())
        return std::nullopt;
    V2VORMessagePtr message = ServiceProtocol::messageFromJson(
        QJsonDocument::fromJson(entry.value).object().value(QLatin1String("message")));
    if (!message)
        return std::nullopt;
    return Stored { message, entry.revision };
}

V2VORMessagePtr NatsMessages::copyFor(const Stored &stored, const QString &conversation, const QString &viewer)
{
    return NatsChange::messageFor(*stored.message, m_directory.members(conversation), viewer);
}

quint64 NatsMessages::topSeq(const QString &conversation)
{
    // Sequences are dense and never go away: search forward from the last one seen here.
    const auto exists
        = [&](quint64 seq) { return m_store.get(NatsStore::Messages, messageKey(conversation, seq)).ok(); };
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

QString NatsMessages::senderAt(const QString &conversation, quint64 seq)
{
    const QString at = senderKey(conversation, seq);
    if (!m_senders.contains(at)) {
        if (const std::optional<Stored> stored = load(conversation, seq))
            m_senders.insert(at, stored->message->sender());
    }
    return m_senders.value(at);
}

quint64 NatsMessages::claimSeq(const QString &conversation, V2VORMessage &message)
{
    quint64 seq = topSeq(conversation);
    do
        message.setSeq(++seq);
    while (
        !m_store.update(NatsStore::Messages, messageKey(conversation, seq), recordOf(conversation, message), 0).ok());
    m_knownTop.insert(conversation, seq);
    return seq;
}

ServiceReply<V2VORMessagePtr> NatsMessages::send(MessagingSession *caller, const V2VORMessagePtr &message,
    const QString &receiver, const QString &groupID, QString *conversation)
{
    const QString sender = caller ? caller->sessionUserID() : QString();
    if (message) {
        if (const std::optional<Home> home = locate(message->msgID())) {
            const std::optional<Stored> stored = load(home->conversation, home->seq);
            if (stored && stored->message->sender() == sender)
                return { {}, copyFor(*stored, home->conversation, sender) };
            return { { V2VOR_ERR_INVALID_PARAMETERS,
                QStringLiteral("message ID \"%1\" is taken").arg(message->msgID()) } };
        }
    }
    if (const CallError refused = checkSend(sender, message, receiver, groupID))
        return { refused };
    *conversation = conversationFor(sender, receiver, groupID);
    return storeNew(caller, sender, message, groupID, *conversation);
}

CallError NatsMessages::checkSend(
    const QString &sender, const V2VORMessagePtr &message, const QString &receiver, const QString &groupID) const
{
    if (const CallError refused = ServiceRules::checkAddress(message, receiver, groupID))
        return refused;
    if (groupID.isEmpty() && !m_directory.user(receiver))
        return ServiceRules::userNotFound(receiver);
    if (!groupID.isEmpty()) {
        if (const CallError refused = m_directory.checkGroupMember(sender, groupID))
            return refused;
    }
    return ServiceRules::checkBody(*message);
}

QString NatsMessages::conversationFor(const QString &sender, const QString &receiver, const QString &groupID)
{
    if (!groupID.isEmpty())
        return groupID;
    const QString key = ServiceRules::directConversationKey(sender, receiver);
    if (!m_directory.conversation(key)) {
        m_directory.changeConversation(key, [&](NatsDirectory::Conversation &direct) {
            direct.isGroup = false;
            direct.members = { sender, receiver };
        });
        m_directory.addMember(key, sender, {});
        m_directory.addMember(key, receiver, {});
    }
    return key;
}

ServiceReply<V2VORMessagePtr> NatsMessages::storeNew(MessagingSession *caller, const QString &sender,
    const V2VORMessagePtr &message, const QString &groupID, const QString &conversation)
{
    const NatsDirectory::User profile = m_directory.user(sender).value_or(NatsDirectory::User {});
    const V2VORMessagePtr stored = message->clone();
    stored->setGroupID(groupID);
    stored->setSender(sender);
    stored->setNickName(profile.nickName);
    stored->setFaceURL(profile.faceURL);
    stored->setTimestamp(platform::MainQueue::now());
    stored->setStatus(V2VOR_MSG_STATUS_SEND_SUCC);
    stored->setMessageVersion(0);
    const quint64 seq = claimSeq(conversation, *stored);
    m_store.update(NatsStore::Messages, indexKey(stored->msgID()),
        toBytes({ { QStringLiteral("conversation"), conversation }, { QStringLiteral("seq"), double(seq) } }), 0);
    m_homes.insert(stored->msgID(), { conversation, seq, stored->supportMessageExtension() });
    m_senders.insert(senderKey(conversation, seq), sender);

    NatsChange change;
    change.kind = NatsChange::NewMessage;
    change.conversation = conversation;
    change.message = stored;
    m_events.emitChange(change, caller);
    return { {}, copyFor({ stored, 0 }, conversation, sender) };
}

ServiceReply<QList<V2VORMessagePtr>> NatsMessages::history(
    const QString &conversation, const QString &userID, int count, quint64 beforeSeq)
{
    const quint64 top = topSeq(conversation);
    QList<V2VORMessagePtr> found;
    quint64 seq = beforeSeq == 0 ? top : std::min(beforeSeq - 1, top);
    for (; seq >= 1 && found.size() < count; --seq) {
        const std::optional<Stored> stored = load(conversation, seq);
        // Sequences are dense and never go away: one that cannot be read is a store still
        // recovering (NATS just restarted), not a gap to skip.
        if (!stored)
            return { { V2VOR_ERR_SERVICE_UNAVAILABLE,
                QStringLiteral("message %1 of \"%2\" cannot be read yet; try again").arg(seq).arg(conversation) } };
        found.append(copyFor(*stored, conversation, userID));
    }
    return { {}, found };
}

ServiceReply<V2VORMessagePtr> NatsMessages::modify(const QString &userID, const V2VORMessage &message)
{
    const std::optional<Home> home = locate(message.msgID());
    if (!home)
        return { ServiceRules::messageNotFound(message.msgID()) };
    if (!m_directory.isMember(home->conversation, userID))
        return { ServiceRules::notMemberToModify() };
    if (const CallError refused = ServiceRules::checkBody(message))
        return { refused };
    for (;;) {
        std::optional<Stored> stored = load(home->conversation, home->seq);
        if (!stored)
            return { ServiceRules::messageNotFound(message.msgID()) };
        if (message.messageVersion() < stored->message->messageVersion())
            return { ServiceRules::modifiedMeanwhile(), copyFor(*stored, home->conversation, userID) };
        // Someone else's modification landed first: look again, it decides the outcome.
        if (!storeModified(*home, message, *stored))
            continue;
        NatsChange change;
        change.kind = NatsChange::Modified;
        change.conversation = home->conversation;
        change.message = stored->message;
        m_events.emitChange(change);
        return { {}, copyFor(*stored, home->conversation, userID) };
    }
}

bool NatsMessages::storeModified(const Home &home, const V2VORMessage &message, Stored &stored)
{
    if (message.customElem())
        stored.message->setCustomElem(std::make_unique<V2VORCustomElem>(*message.customElem()));
    stored.message->setText(message.text());
    stored.message->setMessageVersion(stored.message->messageVersion() + 1);
    return m_store
        .update(NatsStore::Messages, messageKey(home.conversation, home.seq),
            recordOf(home.conversation, *stored.message), stored.revision)
        .ok();
}
