#include "server/nats/NatsEvents.h"

#include "platform/MainQueue.h"
#include "server/nats/NatsDirectory.h"
#include "server/nats/NatsKeyCodec.h"
#include "server/nats/NatsStore.h"

#include <QJsonDocument>

namespace {

QByteArray userSubject(const QString &userID)
{
    return "vor.user." + NatsKeyCodec::encode(userID);
}

QByteArray groupSubject(const QString &group)
{
    return "vor.conv." + NatsKeyCodec::encode(group);
}

bool isDirect(const QString &conversation)
{
    return conversation.startsWith(QLatin1String("c2c:"));
}

QByteArray payloadOf(const NatsChange &change)
{
    return QJsonDocument(change.toJson()).toJson(QJsonDocument::Compact);
}

} // namespace

NatsEvents::NatsEvents(NatsStore &store, NatsDirectory &directory)
    : m_store(store)
    , m_directory(directory)
{
    m_directory.setMembersObserver(
        [this](const QString &conversation, const QStringList &added) { onMembersLearned(conversation, added); });
}

NatsEvents::~NatsEvents()
{
    m_directory.setMembersObserver({});
}

void NatsEvents::attach(MessagingSession *)
{
    // A session hears nothing until a user logs in on it.
}

void NatsEvents::detach(MessagingSession *session)
{
    stopListening(session);
}

void NatsEvents::listen(MessagingSession *session, const QString &userID)
{
    stopListening(session);
    QList<MessagingSession *> &sessions = m_sessionsOf[userID];
    sessions.append(session);
    m_listening.insert(session, userID);
    if (sessions.size() > 1)
        return;
    m_userSubscriptions.insert(userID,
        m_store.subscribe(
            userSubject(userID), [this, userID](const QByteArray &payload) { onRemoteChange(payload, userID); }));
    for (const QString &conversation : m_directory.conversationsOf(userID)) {
        if (!isDirect(conversation))
            join(conversation, userID);
    }
}

void NatsEvents::stopListening(MessagingSession *session)
{
    const auto listening = m_listening.constFind(session);
    if (listening == m_listening.constEnd())
        return;
    const QString userID = *listening;
    m_listening.erase(listening);
    QList<MessagingSession *> &sessions = m_sessionsOf[userID];
    sessions.removeAll(session);
    if (!sessions.isEmpty())
        return;
    m_sessionsOf.remove(userID);
    m_store.unsubscribe(m_userSubscriptions.take(userID));
    for (const QString &group : m_groupsOf.take(userID))
        leave(group, userID);
}

void NatsEvents::join(const QString &group, const QString &userID)
{
    QStringList &groups = m_groupsOf[userID];
    if (groups.contains(group))
        return;
    groups.append(group);
    Group &heard = m_groups[group];
    if (heard.users.isEmpty())
        heard.subscription = m_store.subscribe(
            groupSubject(group), [this](const QByteArray &payload) { onRemoteChange(payload, {}); });
    heard.users.insert(userID);
}

void NatsEvents::leave(const QString &group, const QString &userID)
{
    auto heard = m_groups.find(group);
    if (heard == m_groups.end())
        return;
    heard->users.remove(userID);
    if (heard->users.isEmpty()) {
        m_store.unsubscribe(heard->subscription);
        m_groups.erase(heard);
    }
}

void NatsEvents::onMembersLearned(const QString &conversation, const QStringList &added)
{
    if (isDirect(conversation))
        return;
    for (const QString &userID : added) {
        if (!m_sessionsOf.contains(userID) || m_groupsOf.value(userID).contains(conversation))
            continue;
        join(conversation, userID);
        NatsChange moved;
        moved.conversation = conversation;
        deliver(QList<QString> { userID }, moved, nullptr);
    }
}

void NatsEvents::deliver(const QList<QString> &viewers, const NatsChange &change, MessagingSession *except)
{
    QList<QString> here;
    for (const QString &viewer : viewers) {
        const QList<MessagingSession *> sessions = m_sessionsOf.value(viewer);
        if (!sessions.isEmpty() && !(sessions.size() == 1 && sessions.first() == except))
            here.append(viewer);
    }
    QHash<QString, V2VORConversation> views;
    if (change.kind == NatsChange::ConversationChanged && m_conversationViews && !here.isEmpty())
        views = m_conversationViews(change.conversation, here);
    for (const QString &viewer : std::as_const(here)) {
        const auto view = views.constFind(viewer);
        deliver(viewer, change, except, view == views.constEnd() ? std::nullopt : std::make_optional(*view));
    }
}

void NatsEvents::deliver(const QString &viewer, const NatsChange &change, MessagingSession *except,
    const std::optional<V2VORConversation> &view)
{
    const bool aboutMessage = change.kind == NatsChange::NewMessage || change.kind == NatsChange::Modified;
    const V2VORMessagePtr copy = aboutMessage
        ? NatsChange::messageFor(*change.message, m_directory.members(change.conversation), viewer)
        : V2VORMessagePtr();
    for (MessagingSession *session : m_sessionsOf.value(viewer)) {
        if (session == except)
            continue;
        const V2VORMessagePtr own = copy ? copy->clone() : copy;
        platform::MainQueue::async(session->sessionContext(), [session, change, own, view] {
            switch (change.kind) {
            case NatsChange::NewMessage:
                return session->receiveNewMessage(own);
            case NatsChange::Modified:
                return session->receiveModified(own);
            case NatsChange::ExtensionsChanged:
                return session->receiveExtensionsChanged(change.msgID, change.extensions, change.versions);
            case NatsChange::ExtensionsDeleted:
                return session->receiveExtensionsDeleted(change.msgID, change.keys, change.versions);
            case NatsChange::ConversationChanged:
                if (view)
                    session->receiveConversationChanged(*view);
                return;
            }
        });
    }
}

void NatsEvents::deliverToMembers(const NatsChange &change, MessagingSession *except)
{
    if (isDirect(change.conversation))
        deliver(m_directory.members(change.conversation), change, except);
    else
        deliver(m_groups.value(change.conversation).users.values(), change, except);
}

void NatsEvents::emitChange(const NatsChange &change, MessagingSession *except)
{
    deliverToMembers(change, except);
    if (!isDirect(change.conversation)) {
        m_store.publish(groupSubject(change.conversation), payloadOf(change));
        return;
    }
    const QByteArray payload = payloadOf(change);
    for (const QString &member : m_directory.members(change.conversation))
        m_store.publish(userSubject(member), payload);
}

void NatsEvents::emitChangeTo(const QString &viewer, const NatsChange &change)
{
    deliver(QList<QString> { viewer }, change, nullptr);
    m_store.publish(userSubject(viewer), payloadOf(change));
}

void NatsEvents::setRemoteObserver(Observer observer)
{
    m_remoteObserver = std::move(observer);
}

void NatsEvents::setConversationViews(ConversationViews views)
{
    m_conversationViews = std::move(views);
}

void NatsEvents::onRemoteChange(const QByteArray &payload, const QString &viewer)
{
    const std::optional<NatsChange> change = NatsChange::fromJson(QJsonDocument::fromJson(payload).object());
    if (!change)
        return;
    if (m_remoteObserver)
        m_remoteObserver(*change);
    if (viewer.isEmpty())
        deliverToMembers(*change, nullptr);
    else
        deliver(QList<QString> { viewer }, *change, nullptr);
}
