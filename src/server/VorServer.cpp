#include "server/VorServer.h"

#include "server/ServerConnection.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QWebSocket>
#include <QWebSocketServer>

VorServer::VorServer(const ServerOptions &options, MessagingBackend *backend, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_backend(backend)
    , m_authority(options.secret)
    , m_listener(new QTcpServer(this))
    , m_server(new QWebSocketServer(QStringLiteral("vor-server"), QWebSocketServer::NonSecureMode, this))
{
    // Replies are small and answer a waiting client: they leave at once rather than wait for
    // the client's acknowledgement of the last packet.
    connect(m_listener, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_listener->nextPendingConnection()) {
            socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
            m_server->handleConnection(socket);
        }
    });
    connect(m_server, &QWebSocketServer::newConnection, this, &VorServer::accept);
}

VorServer::~VorServer()
{
    // Connections leave the backend before the server's other parts go.
    qDeleteAll(std::exchange(m_connections, {}));
}

bool VorServer::listen(QString *error)
{
    if (m_listener->listen(m_options.listenAddress, m_options.port))
        return true;
    if (error)
        *error = m_listener->errorString();
    return false;
}

void VorServer::close()
{
    m_listener->close();
    qDeleteAll(std::exchange(m_connections, {}));
}

quint16 VorServer::port() const
{
    return m_listener->isListening() ? m_listener->serverPort() : 0;
}

QHostAddress VorServer::address() const
{
    return m_listener->serverAddress();
}

QString VorServer::url() const
{
    const QHostAddress host = address();
    const QString name = host.protocol() == QAbstractSocket::IPv6Protocol ? QStringLiteral("[%1]").arg(host.toString())
                                                                          : host.toString();
    return QStringLiteral("ws://%1:%2").arg(name).arg(port());
}

int VorServer::connectionCount() const
{
    return int(m_connections.size());
}

const TokenAuthority &VorServer::authority() const
{
    return m_authority;
}

void VorServer::accept()
{
    while (QWebSocket *socket = m_server->nextPendingConnection()) {
        auto *connection = new ServerConnection(socket, m_backend, &m_authority, m_options, this);
        m_connections.append(connection);
        connect(connection, &ServerConnection::finished, this, [this, connection] {
            m_connections.removeAll(connection);
            connection->deleteLater();
        });
    }
}
