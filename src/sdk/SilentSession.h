// A session that acts for a user and hears nothing: work on a backend where no client waits for
// events, such as a server seeding its directory or a benchmark writing through a store.
#pragma once

#include "sdk/MessagingSession.h"

#include <QObject>

class SilentSession : public MessagingSession
{
public:
    explicit SilentSession(const QString &userID)
        : m_userID(userID)
    {
    }

    QString sessionUserID() const override { return m_userID; }
    QObject *sessionContext() override { return &m_context; }
    void receiveNewMessage(const V2VORMessagePtr &) override { }
    void receiveModified(const V2VORMessagePtr &) override { }
    void receiveExtensionsChanged(
        const QString &, const QList<V2VORMessageExtension> &, const QHash<QString, quint64> &) override
    {
    }
    void receiveExtensionsDeleted(const QString &, const QStringList &, const QHash<QString, quint64> &) override { }
    void receiveConversationChanged(const V2VORConversation &) override { }

private:
    QString m_userID;
    QObject m_context;
};
