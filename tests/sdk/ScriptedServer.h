// A messaging server for network client tests that answers only what the test scripts: it
// listens on loopback, proves every user whose token is their user ID, keeps every request it
// receives, and answers an operation through the test's handler for it (or not at all, so the
// test can answer later, out of order, or drop the connection instead).
#pragma once

#include "sdk/ServiceProtocol.h"

#include <QHash>
#include <QJsonArray>
#include <QPointer>
#include <QTest>
#include <QWebSocket>
#include <QWebSocketServer>
#include <functional>

class ScriptedServer : public QObject
{
public:
    using Handler = std::function<void(const ServiceProtocol::Request &request)>;

    ScriptedServer()
        : m_server(QStringLiteral("scripted"), QWebSocketServer::NonSecureMode)
    {
        QObject::connect(&m_server, &QWebSocketServer::newConnection, this, [this] { accept(); });
        handlers.insert(QStringLiteral("hello"), [this](const ServiceProtocol::Request &request) {
            reply(request.id, { { QStringLiteral("userID"), request.args.value(QStringLiteral("token")) } });
        });
        // A client asks who it is right after logging in, and for its conversations after
        // catching up.
        for (const char *op : { "usersInfo", "conversationList" }) {
            handlers.insert(QLatin1String(op), [this](const ServiceProtocol::Request &request) {
                reply(request.id,
                    { { QStringLiteral("users"), QJsonArray() }, { QStringLiteral("conversations"), QJsonArray() } });
            });
        }
    }

    bool listen() { return m_server.listen(QHostAddress::LocalHost); }
    QUrl url() const { return QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(m_server.serverPort())); }
    void stopListening() { m_server.close(); }

    void sendRaw(const QByteArray &frame)
    {
        if (m_client)
            m_client->sendTextMessage(QString::fromUtf8(frame));
    }
    void reply(qint64 id, const QJsonObject &result = {}) { sendRaw(ServiceProtocol::encodeReply(id, {}, result)); }
    void event(const QString &name, const QJsonObject &data) { sendRaw(ServiceProtocol::encodeEvent(name, data)); }
    void drop()
    {
        if (m_client)
            m_client->abort();
    }

    /// Requests of `op` received so far, oldest first.
    QList<ServiceProtocol::Request> requests(const QString &op) const
    {
        QList<ServiceProtocol::Request> found = m_requests;
        found.removeIf([&](const ServiceProtocol::Request &request) { return request.op != op; });
        return found;
    }
    /// Waits (bounded, on the event loop) until `count` requests of `op` have arrived.
    bool waitFor(const QString &op, int count = 1)
    {
        return QTest::qWaitFor([&] { return requests(op).size() >= count; }, 5000);
    }

    QHash<QString, Handler> handlers;

private:
    void accept()
    {
        m_client = m_server.nextPendingConnection();
        m_client->setParent(this);
        QObject::connect(m_client, &QWebSocket::textMessageReceived, this, [this](const QString &text) {
            const ServiceProtocol::DecodedRequest decoded = ServiceProtocol::decodeRequest(text.toUtf8());
            QVERIFY2(!decoded.error, qPrintable(decoded.error.desc));
            m_requests.append(decoded.request);
            if (const Handler handler = handlers.value(decoded.request.op))
                handler(decoded.request);
        });
    }

    QWebSocketServer m_server;
    QPointer<QWebSocket> m_client;
    QList<ServiceProtocol::Request> m_requests;
};
