// Event fan-out between the servers of one service: each member's own copy of an event is
// published on "vor.user.<user>"; a server subscribes to the subjects of the users logged in
// on its sessions (counted per user), so joining a group needs no new subscription. A server
// hands its own changes to its own sessions directly, before the caller's callback, and
// ignores the echo of its publications.
//
// An event is {"ev": name, "data": protocol JSON}; on the wire it also names its "user".
#pragma once

#include "sdk/MessagingSession.h"

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <functional>

class NatsStore;

class NatsEvents
{
public:
    using EventFor = std::function<QJsonObject(const QString &viewer)>;
    using Observer = std::function<void(const QJsonObject &event)>;

    explicit NatsEvents(NatsStore &store);
    ~NatsEvents();

    static QJsonObject event(const QString &name, const QJsonObject &data);

    void attach(MessagingSession *session);
    void detach(MessagingSession *session);
    /// From now on `session` hears the events of `userID` from every server.
    void listen(MessagingSession *session, const QString &userID);
    void stopListening(MessagingSession *session);

    /// Hands each viewer's event to their sessions here (but `except`) and to other servers.
    void emitEvent(const QStringList &viewers, const EventFor &eventFor, MessagingSession *except = nullptr);
    /// Sees every event from another server before the sessions here get it.
    void setRemoteObserver(Observer observer);

private:
    void deliver(const QString &viewer, const QJsonObject &event, MessagingSession *except);
    void onRemoteEvent(const QByteArray &payload);

    NatsStore &m_store;
    QList<MessagingSession *> m_attached;
    /// session -> the user whose events it hears
    QHash<MessagingSession *, QString> m_listening;
    struct UserSubscription
    {
        quint64 id = 0;
        int sessions = 0;
    };
    QHash<QString, UserSubscription> m_subscriptions;
    Observer m_remoteObserver;
};
