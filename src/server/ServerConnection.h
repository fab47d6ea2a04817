// One client's WebSocket connection: reads its frames, holds it to saying hello with a good
// token first and to its request rate, runs its requests on the backend and writes the replies,
// and, as the client's session on the backend, forwards the events of its user.
#pragma once

#include "sdk/MessagingSession.h"
#include "server/RateLimiter.h"
#include "server/RequestDispatcher.h"

#include <QObject>
#include <QPointer>

class MessagingBackend;
class QWebSocket;
class TokenAuthority;
struct ServerOptions;

class ServerConnection : public QObject, public MessagingSession
{
    Q_OBJECT

public:
    /// Takes `socket` over; closes it when the connection is destroyed.
    ServerConnection(QWebSocket *socket, MessagingBackend *backend, const TokenAuthority *authority,
        const ServerOptions &options, QObject *parent = nullptr);
    ~ServerConnection() override;

    bool isOperator() const;

    QString sessionUserID() const override;
    QObject *sessionContext() override;
    void receiveNewMessage(const V2VORMessagePtr &copy) override;
    void receiveModified(const V2VORMessagePtr &copy) override;
    void receiveExtensionsChanged(const QString &msgID, const QList<V2VORMessageExtension> &extensions,
        const QHash<QString, quint64> &versions) override;
    void receiveExtensionsDeleted(
        const QString &msgID, const QStringList &keys, const QHash<QString, quint64> &versions) override;
    void receiveConversationChanged(const V2VORConversation &conversation) override;

Q_SIGNALS:
    /// The socket is gone; the connection may be deleted.
    void finished();

private:
    void onText(const QString &text);
    void onBinary(const QByteArray &data);
    void handle(const QByteArray &frame, bool isText);
    void hello(qint64 id, const QString &token);
    void reply(qint64 id, const CallError &error, const QJsonObject &result = {});
    RequestDispatcher::Answer answerTo(qint64 id);
    void sendEvent(const QString &event, const QJsonObject &data);
    void closeForPolicy(const QString &reason);

    QPointer<QWebSocket> m_socket;
    MessagingBackend *m_backend;
    const TokenAuthority *m_authority;
    RateLimiter m_limiter;
    RequestDispatcher m_dispatcher;
    QString m_userID;
    bool m_operator = false;
    bool m_helloPending = false;
};
