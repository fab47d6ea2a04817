#include "server/ServerConnection.h"

#include "platform/MainQueue.h"
#include "sdk/MessagingBackend.h"
#include "sdk/ServiceProtocol.h"
#include "server/ServerOptions.h"
#include "server/TokenAuthority.h"

#include <QWebSocket>

namespace {

// Qt drops a larger frame without a word; a little headroom lets the codec answer 9502 instead.
constexpr qsizetype kSocketFrameLimit = ServiceProtocol::kMaxFrameBytes + 16 * 1024;

const CallError kRateLimited { V2VOR_ERR_RATE_LIMITED, QStringLiteral("too many requests; retry later") };
const CallError kNoHello { V2VOR_ERR_AUTH_FAILED, QStringLiteral("say hello with a token first") };
const CallError kNotOperator { V2VOR_ERR_NOT_PERMITTED, QStringLiteral("the directory is kept by operators") };

} // namespace

ServerConnection::ServerConnection(QWebSocket *socket, MessagingBackend *backend, const TokenAuthority *authority,
    const ServerOptions &options, QObject *parent)
    : QObject(parent)
    , m_socket(socket)
    , m_backend(backend)
    , m_authority(authority)
    , m_limiter(options.limits)
    , m_dispatcher(backend, this)
{
    socket->setParent(this);
    socket->setMaxAllowedIncomingFrameSize(quint64(kSocketFrameLimit));
    socket->setMaxAllowedIncomingMessageSize(quint64(kSocketFrameLimit));
    connect(socket, &QWebSocket::textMessageReceived, this, &ServerConnection::onText);
    connect(socket, &QWebSocket::binaryMessageReceived, this, &ServerConnection::onBinary);
    connect(socket, &QWebSocket::disconnected, this, &ServerConnection::finished);
    m_backend->attach(this);
    platform::MainQueue::after(options.helloTimeoutMs, this, [this] {
        if (m_userID.isEmpty())
            closeForPolicy(QStringLiteral("no hello in time"));
    });
}

ServerConnection::~ServerConnection()
{
    m_backend->detach(this);
    // Closing from here says nothing more to whoever listens to this connection.
    if (m_socket)
        m_socket->disconnect(this);
    if (m_socket && m_socket->state() == QAbstractSocket::ConnectedState)
        m_socket->close(QWebSocketProtocol::CloseCodeGoingAway);
}

bool ServerConnection::isOperator() const
{
    return m_operator;
}

QString ServerConnection::sessionUserID() const
{
    return m_userID;
}

QObject *ServerConnection::sessionContext()
{
    return this;
}

void ServerConnection::onText(const QString &text)
{
    handle(text.toUtf8(), true);
}

void ServerConnection::onBinary(const QByteArray &data)
{
    Q_UNUSED(data);
    // Rate limited like any frame, then refused: the protocol is JSON in text frames.
    handle(QByteArray(), false);
}

void ServerConnection::handle(const QByteArray &frame, bool isText)
{
    if (!m_socket || m_socket->state() != QAbstractSocket::ConnectedState)
        return;
    const ServiceProtocol::DecodedRequest decoded = !isText
        ? ServiceProtocol::DecodedRequest { {}, { V2VOR_ERR_PROTOCOL_MALFORMED, QStringLiteral("frames are text") } }
        : ServiceProtocol::decodeRequest(frame);
    const qint64 id = decoded.request.id;
    switch (m_limiter.take()) {
    case RateLimiter::Verdict::Close:
        return closeForPolicy(QStringLiteral("kept sending after being rate limited"));
    case RateLimiter::Verdict::Refuse:
        return reply(id, kRateLimited);
    case RateLimiter::Verdict::Admit:
        break;
    }
    if (decoded.error)
        return reply(id, decoded.error);
    const QString &op = decoded.request.op;
    const bool isHello = op == QLatin1String("hello");
    if (!isHello && m_userID.isEmpty())
        return reply(id, kNoHello);
    const RequestArgs::Parsed parsed = RequestArgs::parseArgs(op, decoded.request.args);
    if (parsed.error)
        return reply(id, parsed.error);
    if (isHello)
        return hello(id, std::get<RequestArgs::Hello>(*parsed.args).token);
    if (RequestArgs::isDirectoryOp(op) && !m_operator)
        return reply(id, kNotOperator);
    m_dispatcher.dispatch(*parsed.args, answerTo(id));
}

void ServerConnection::hello(qint64 id, const QString &token)
{
    if (!m_userID.isEmpty() || m_helloPending)
        return reply(id, { V2VOR_ERR_PROTOCOL_MALFORMED, QStringLiteral("hello comes once a connection") });
    const TokenAuthority::Verdict verdict = m_authority->verify(token);
    if (!verdict.ok())
        return reply(id, verdict.error());
    m_helloPending = true;
    QPointer<ServerConnection> guard(this);
    m_backend->login(this, verdict.userID, QString(), [guard, id, verdict](const CallError &error) {
        if (!guard)
            return;
        guard->m_helloPending = false;
        if (error)
            return guard->reply(id, error);
        guard->m_userID = verdict.userID;
        guard->m_operator = verdict.isOperator;
        guard->reply(id, {},
            { { QStringLiteral("userID"), verdict.userID }, { QStringLiteral("operator"), verdict.isOperator },
                { QStringLiteral("server"), QStringLiteral("vor-server") },
                { QStringLiteral("protocol"), ServiceProtocol::kVersion } });
    });
}

void ServerConnection::reply(qint64 id, const CallError &error, const QJsonObject &result)
{
    // Queued behind the events the request caused, which the backend queues for this session
    // before it answers: the client hears of its own change before the reply.
    platform::MainQueue::async(this, [this, frame = ServiceProtocol::encodeReply(id, error, result)] {
        if (m_socket)
            m_socket->sendTextMessage(QString::fromUtf8(frame));
    });
}

RequestDispatcher::Answer ServerConnection::answerTo(qint64 id)
{
    QPointer<ServerConnection> guard(this);
    return [guard, id](const CallError &error, const QJsonObject &result) {
        if (guard)
            guard->reply(id, error, result);
    };
}

void ServerConnection::sendEvent(const QString &event, const QJsonObject &data)
{
    if (m_socket)
        m_socket->sendTextMessage(QString::fromUtf8(ServiceProtocol::encodeEvent(event, data)));
}

void ServerConnection::closeForPolicy(const QString &reason)
{
    if (m_socket && m_socket->state() == QAbstractSocket::ConnectedState)
        m_socket->close(QWebSocketProtocol::CloseCodePolicyViolated, reason);
}

void ServerConnection::receiveNewMessage(const V2VORMessagePtr &copy)
{
    sendEvent(QStringLiteral("newMessage"), { { QStringLiteral("message"), ServiceProtocol::toJson(*copy) } });
}

void ServerConnection::receiveModified(const V2VORMessagePtr &copy)
{
    sendEvent(QStringLiteral("messageModified"), { { QStringLiteral("message"), ServiceProtocol::toJson(*copy) } });
}

void ServerConnection::receiveExtensionsChanged(
    const QString &msgID, const QList<V2VORMessageExtension> &extensions, const QHash<QString, quint64> &versions)
{
    sendEvent(QStringLiteral("extensionsChanged"),
        { { QStringLiteral("msgID"), msgID }, { QStringLiteral("extensions"), ServiceProtocol::toJson(extensions) },
            { QStringLiteral("versions"), ServiceProtocol::toJson(versions) } });
}

void ServerConnection::receiveExtensionsDeleted(
    const QString &msgID, const QStringList &keys, const QHash<QString, quint64> &versions)
{
    sendEvent(QStringLiteral("extensionsDeleted"),
        { { QStringLiteral("msgID"), msgID }, { QStringLiteral("keys"), QJsonArray::fromStringList(keys) },
            { QStringLiteral("versions"), ServiceProtocol::toJson(versions) } });
}

void ServerConnection::receiveConversationChanged(const V2VORConversation &conversation)
{
    sendEvent(QStringLiteral("conversationChanged"),
        { { QStringLiteral("conversation"), ServiceProtocol::toJson(conversation) } });
}
