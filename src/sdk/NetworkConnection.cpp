#include "sdk/NetworkConnection.h"

#include "platform/MainQueue.h"
#include "sdk/ServiceProtocol.h"

#include <QRandomGenerator>
#include <QWebSocket>
#include <algorithm>

int NetworkConnection::Backoff::delayAfter(int failures) const
{
    double delay = initialMs;
    for (int i = 1; i < failures && delay < maxMs; ++i)
        delay *= 2;
    delay = std::min<double>(delay, maxMs);
    const double cut = delay * std::clamp(jitter, 0.0, 1.0) * QRandomGenerator::global()->generateDouble();
    return std::max(1, int(delay - cut));
}

NetworkConnection::NetworkConnection(const QUrl &url, QObject *parent)
    : QObject(parent)
    , m_url(url)
    , m_socket(new QWebSocket(QString(), QWebSocketProtocol::VersionLatest, this))
{
    m_socket->setMaxAllowedIncomingFrameSize(ServiceProtocol::kMaxFrameBytes);
    m_socket->setMaxAllowedIncomingMessageSize(ServiceProtocol::kMaxFrameBytes);
    connect(m_socket, &QWebSocket::connected, this, [this] {
        m_up = true;
        m_failures = 0;
        Q_EMIT opened();
    });
    // A refused attempt never connects, so it tells nothing through disconnected().
    connect(m_socket, &QWebSocket::stateChanged, this, [this](QAbstractSocket::SocketState state) {
        if (state == QAbstractSocket::UnconnectedState)
            onDisconnected();
    });
    connect(m_socket, &QWebSocket::textMessageReceived, this,
        [this](const QString &text) { Q_EMIT frameReceived(text.toUtf8()); });
}

NetworkConnection::~NetworkConnection()
{
    m_wanted = false;
    m_socket->disconnect(this);
    m_socket->abort();
}

QUrl NetworkConnection::url() const
{
    return m_url;
}

void NetworkConnection::setBackoff(const Backoff &backoff)
{
    m_backoff = backoff;
}

NetworkConnection::Backoff NetworkConnection::backoff() const
{
    return m_backoff;
}

void NetworkConnection::open()
{
    if (m_wanted)
        return;
    m_wanted = true;
    m_failures = 0;
    attempt();
}

void NetworkConnection::close()
{
    m_wanted = false;
    // A socket still connecting has no closing handshake to make.
    if (m_up)
        m_socket->close();
    else
        m_socket->abort();
}

bool NetworkConnection::isOpen() const
{
    return m_up;
}

int NetworkConnection::failures() const
{
    return m_failures;
}

void NetworkConnection::sendFrame(const QByteArray &frame)
{
    if (m_up)
        m_socket->sendTextMessage(QString::fromUtf8(frame));
}

void NetworkConnection::attempt()
{
    m_retryPending = false;
    if (!m_wanted || m_socket->state() != QAbstractSocket::UnconnectedState)
        return;
    m_socket->open(m_url);
}

void NetworkConnection::onDisconnected()
{
    const bool wasUp = m_up;
    m_up = false;
    if (wasUp)
        Q_EMIT dropped();
    if (m_wanted)
        scheduleRetry();
}

void NetworkConnection::scheduleRetry()
{
    if (m_retryPending)
        return;
    m_retryPending = true;
    ++m_failures;
    const int delay = m_backoff.delayAfter(m_failures);
    Q_EMIT retryScheduled(delay);
    platform::MainQueue::after(delay, this, [this] { attempt(); });
}
