// A session that acts for a user and hears nothing: the server's own work on a backend, such as
// seeding the directory, where no client waits for events.
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
