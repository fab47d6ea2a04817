#include "server/nats/NatsEvents.h"

#include "platform/MainQueue.h"
#include "sdk/ServiceProtocol.h"
#include "server/nats/NatsKeyCodec.h"
#include "server/nats/NatsStore.h"

#include <QJsonDocument>

namespace {

QByteArray userSubject(const QString &userID)
{
    return "vor.user." + NatsKeyCodec::encode(userID);
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

NatsEvents::NatsEvents(NatsStore &store)
    : m_store(store)
{
}

NatsEvents::~NatsEvents() = default;

QJsonObject NatsEvents::event(const QString &name, const QJsonObject &data)
{
    return { { QStringLiteral("ev"), name }, { QStringLiteral("data"), data } };
}

void NatsEvents::attach(MessagingSession *session)
{
    if (!m_attached.contains(session))
        m_attached.append(session);
}

void NatsEvents::detach(MessagingSession *session)
{
    stopListening(session);
    m_attached.removeAll(session);
}

void NatsEvents::listen(MessagingSession *session, const QString &userID)
{
    stopListening(session);
    UserSubscription &subscription = m_subscriptions[userID];
    if (subscription.sessions++ == 0)
        subscription.id
            = m_store.subscribe(userSubject(userID), [this](const QByteArray &payload) { onRemoteEvent(payload); });
    m_listening.insert(session, userID);
}

void NatsEvents::stopListening(MessagingSession *session)
{
    auto listening = m_listening.find(session);
    if (listening == m_listening.end())
        return;
    auto subscription = m_subscriptions.find(*listening);
    if (subscription != m_subscriptions.end() && --subscription->sessions == 0) {
        m_store.unsubscribe(subscription->id);
        m_subscriptions.erase(subscription);
    }
    m_listening.erase(listening);
}

void NatsEvents::deliver(const QString &viewer, const QJsonObject &event, MessagingSession *except)
{
    const QList<MessagingSession *> current = m_attached;
    for (MessagingSession *session : current) {
        if (session != except && session->sessionUserID() == viewer)
            platform::MainQueue::async(session->sessionContext(), [session, event] { dispatch(session, event); });
    }
}

void NatsEvents::emitEvent(const QStringList &viewers, const EventFor &eventFor, MessagingSession *except)
{
    QStringList unique = viewers;
    unique.removeDuplicates();
    for (const QString &viewer : std::as_const(unique)) {
        const QJsonObject event = eventFor(viewer);
        deliver(viewer, event, except);
        QJsonObject envelope = event;
        envelope.insert(QStringLiteral("user"), viewer);
        m_store.publish(userSubject(viewer), QJsonDocument(envelope).toJson(QJsonDocument::Compact));
    }
}

void NatsEvents::setRemoteObserver(Observer observer)
{
    m_remoteObserver = std::move(observer);
}

void NatsEvents::onRemoteEvent(const QByteArray &payload)
{
    const QJsonObject envelope = QJsonDocument::fromJson(payload).object();
    if (m_remoteObserver)
        m_remoteObserver(envelope);
    deliver(envelope.value(QLatin1String("user")).toString(), envelope, nullptr);
}
