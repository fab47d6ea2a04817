// One party that hears the messaging service's events for a user: a client library instance
// in this process, or a server's connection to a client elsewhere. The service hands each
// event to every session of every member concerned, each with its own copy as that member
// sees it (who sent it, the other side of a one-to-one chat).
#pragma once

#include "sdk/V2VORConnectionState.h"
#include "sdk/V2VORConversation.h"
#include "sdk/V2VORMessage.h"
#include "sdk/V2VORMessageExtension.h"

#include <QHash>
#include <QStringList>

class QObject;

class MessagingSession
{
public:
    virtual ~MessagingSession() = default;

    /// The user the session acts for; empty while nobody is logged in on it.
    virtual QString sessionUserID() const = 0;
    /// Queued events for this session are dropped once this object is destroyed.
    virtual QObject *sessionContext() = 0;

    virtual void receiveNewMessage(const V2VORMessagePtr &copy) = 0;
    virtual void receiveModified(const V2VORMessagePtr &copy) = 0;
    /// `versions`: the versions the changed keys have now.
    virtual void receiveExtensionsChanged(const QString &msgID, const QList<V2VORMessageExtension> &extensions,
                                          const QHash<QString, quint64> &versions) = 0;
    virtual void receiveExtensionsDeleted(
        const QString &msgID, const QStringList &keys, const QHash<QString, quint64> &versions) = 0;
    virtual void receiveConversationChanged(const V2VORConversation &conversation) = 0;

    /// The connection to a service across the network changed state.
    virtual void receiveConnectionState(V2VORConnectionState state) { Q_UNUSED(state); }
    /// The connection came back after a drop: events of the time offline were not heard, and
    /// the session may ask the service for what it missed.
    virtual void receiveReconnected() { }
};
