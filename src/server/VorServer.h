// The listening messaging server: accepts WebSocket clients on the options' address and port
// and serves every connection from one backend.
#pragma once

#include "server/ServerOptions.h"
#include "server/TokenAuthority.h"

#include <QObject>

class MessagingBackend;
class QTcpServer;
class QWebSocketServer;
class ServerConnection;

class VorServer : public QObject
{
    Q_OBJECT

public:
    /// `backend` must outlive the server.
    VorServer(const ServerOptions &options, MessagingBackend *backend, QObject *parent = nullptr);
    ~VorServer() override;

    /// Starts listening; on failure `error` says why.
    bool listen(QString *error = nullptr);
    void close();
    /// The port listened on (the one picked when the options asked for 0); 0 when not listening.
    quint16 port() const;
    QHostAddress address() const;
    /// "ws://ADDR:PORT".
    QString url() const;
    int connectionCount() const;
    const TokenAuthority &authority() const;

private:
    void accept();

    ServerOptions m_options;
    MessagingBackend *m_backend;
    TokenAuthority m_authority;
    QTcpServer *m_listener;
    /// Speaks the WebSocket handshake on the listener's connections.
    QWebSocketServer *m_server;
    QList<ServerConnection *> m_connections;
};
