#include "sdk/NetworkBackend.h"

#include "platform/MainQueue.h"
#include "sdk/NetworkReplies.h"
#include "sdk/SessionEvent.h"

#include <QRandomGenerator>

using namespace ServiceProtocol;

using namespace NetworkReplies;

NetworkBackend::NetworkBackend(const QUrl &url)
    : m_connection(std::make_unique<NetworkConnection>(url))
    , m_requests(m_connection.get())
{
    NetworkConnection *connection = m_connection.get();
    QObject::connect(connection, &NetworkConnection::opened, connection, [this] { onOpened(); });
    QObject::connect(connection, &NetworkConnection::dropped, connection, [this] { onDropped(); });
    QObject::connect(
        connection, &NetworkConnection::frameReceived, connection, [this](const QByteArray &frame) { onFrame(frame); });
}

// Requests still open are dropped unanswered: their callers are being destroyed with us.
NetworkBackend::~NetworkBackend() = default;

NetworkConnection *NetworkBackend::connection() const
{
    return m_connection.get();
}

V2VORConnectionState NetworkBackend::connectionState() const
{
    return m_state;
}

void NetworkBackend::setWaitLimit(int ms)
{
    m_requests.setWaitLimit(ms);
}

void NetworkBackend::attach(MessagingSession *session)
{
    if (!m_attached.contains(session))
        m_attached.append(session);
}

void NetworkBackend::detach(MessagingSession *session)
{
    m_attached.removeAll(session);
    if (m_session == session)
        m_session = nullptr;
}

void NetworkBackend::login(MessagingSession *session, const QString &userID, const QString &token, Done done)
{
    if (m_loginDone)
        finishLogin({ V2VOR_ERR_AUTH_FAILED, QStringLiteral("another login replaced this one") });
    m_session = session;
    m_userID = userID;
    m_token = token;
    m_loginDone = std::move(done);
    const quint64 spell = ++m_loginSpell;
    platform::MainQueue::after(m_requests.waitLimit(), m_connection.get(), [this, spell] {
        if (m_loginDone && m_loginSpell == spell)
            refuse({ V2VOR_ERR_SERVICE_UNAVAILABLE,
                QStringLiteral("cannot reach %1").arg(m_connection->url().toString()) });
    });
    if (m_connection->isOpen())
        return onOpened();
    setState(V2VOR_CONNECTION_CONNECTING);
    m_connection->open();
}

void NetworkBackend::logout(MessagingSession *session, Done done)
{
    Q_UNUSED(session);
    refuse({ V2VOR_ERR_NOT_LOGGED_IN, QStringLiteral("logged out") });
    m_userID.clear();
    m_everProven = false;
    if (done)
        done({});
}

QString NetworkBackend::newMessageID()
{
    QRandomGenerator *random = QRandomGenerator::system();
    return QStringLiteral("msg-%1%2")
        .arg(random->generate64(), 16, 16, QLatin1Char('0'))
        .arg(random->generate64(), 16, 16, QLatin1Char('0'));
}

template<typename T, typename Decode>
void NetworkBackend::call(const QString &op, const QJsonObject &args, Decode decode, Reply<T> reply)
{
    m_requests.add(op, args, [op, decode, reply](const ServerFrame &frame, int) {
        if (reply)
            reply(readReply<T>(op, frame, decode));
    });
    flush();
}

void NetworkBackend::callDone(const QString &op, const QJsonObject &args, Done done)
{
    m_requests.add(op, args, [done](const ServerFrame &frame, int) {
        if (done)
            done(frame.error);
    });
    flush();
}

void NetworkBackend::callExtensions(const QString &op, const QString &msgID, const QJsonObject &args,
    ExtensionDone done, const QList<V2VORMessageExtension> &written)
{
    m_requests.add(op, args, [op, msgID, done, written](const ServerFrame &frame, int attempts) {
        if (done)
            done(readExtensionReply(op, msgID, frame, attempts > 1 ? written : QList<V2VORMessageExtension>()));
    });
    flush();
}

void NetworkBackend::send(MessagingSession *caller, const V2VORMessagePtr &message, const QString &receiver,
    const QString &groupID, const SendRecord &record, Reply<V2VORMessagePtr> reply)
{
    Q_UNUSED(caller);
    if (!message) {
        if (reply)
            reply({ { V2VOR_ERR_INVALID_PARAMETERS, QStringLiteral("sendMessage needs a message") }, nullptr });
        return;
    }
    QJsonObject json = ServiceProtocol::toJson(*message);
    if (!record.msgID.isEmpty())
        json.insert(QStringLiteral("msgID"), record.msgID);
    QJsonObject args { { QStringLiteral("message"), json }, { QStringLiteral("priority"), record.priority },
        { QStringLiteral("onlineUserOnly"), record.onlineUserOnly } };
    args.insert(groupID.isEmpty() ? QStringLiteral("receiver") : QStringLiteral("groupID"),
        groupID.isEmpty() ? receiver : groupID);
    if (record.offlinePushInfo)
        args.insert(QStringLiteral("offlinePushInfo"), pushInfoJson(*record.offlinePushInfo));
    call<V2VORMessagePtr>(QStringLiteral("sendMessage"), args, messageIn, reply);
}

void NetworkBackend::history(
    MessagingSession *, const QString &groupID, int count, quint64 beforeSeq, Reply<QList<V2VORMessagePtr>> reply)
{
    call<QList<V2VORMessagePtr>>(
        QStringLiteral("history"), pageArgs("groupID", groupID, count, beforeSeq), messagesIn, reply);
}

void NetworkBackend::directHistory(
    MessagingSession *, const QString &peerID, int count, quint64 beforeSeq, Reply<QList<V2VORMessagePtr>> reply)
{
    call<QList<V2VORMessagePtr>>(
        QStringLiteral("directHistory"), pageArgs("peerID", peerID, count, beforeSeq), messagesIn, reply);
}

void NetworkBackend::modify(MessagingSession *, const V2VORMessage &message, Reply<V2VORMessagePtr> reply)
{
    call<V2VORMessagePtr>(
        QStringLiteral("modifyMessage"), { { QStringLiteral("message"), toJson(message) } }, messageIn, reply);
}

void NetworkBackend::messageAt(MessagingSession *, const QString &groupID, quint64 seq, Reply<QString> reply)
{
    const QJsonObject args { { QStringLiteral("groupID"), groupID }, { QStringLiteral("seq"), double(seq) } };
    call<QString>(
        QStringLiteral("messageAt"), args, [](const QJsonObject &result) { return stringIn(result, "msgID"); }, reply);
}

void NetworkBackend::getExtensions(MessagingSession *, const QString &msgID, ExtensionDone done)
{
    callExtensions(QStringLiteral("getExtensions"), msgID, { { QStringLiteral("msgID"), msgID } }, done);
}

void NetworkBackend::setExtensions(MessagingSession *, const QString &msgID,
    const QList<V2VORMessageExtension> &extensions, const QHash<QString, quint64> &seenVersions, ExtensionDone done)
{
    const QJsonObject args { { QStringLiteral("msgID"), msgID }, { QStringLiteral("extensions"), toJson(extensions) },
        { QStringLiteral("seen"), toJson(seenVersions) } };
    callExtensions(QStringLiteral("setExtensions"), msgID, args, done, extensions);
}

void NetworkBackend::deleteExtensions(
    MessagingSession *, const QString &msgID, const QStringList &keys, ExtensionDone done)
{
    const QJsonObject args { { QStringLiteral("msgID"), msgID },
        { QStringLiteral("keys"), QJsonArray::fromStringList(keys) } };
    callExtensions(QStringLiteral("deleteExtensions"), msgID, args, done);
}

void NetworkBackend::conversationList(MessagingSession *, Reply<QList<V2VORConversation>> reply)
{
    call<QList<V2VORConversation>>(QStringLiteral("conversationList"), {}, conversationsIn, reply);
}

void NetworkBackend::groupsInfo(MessagingSession *, const QStringList &groupIDs, Reply<QList<V2VORGroupInfo>> reply)
{
    call<QList<V2VORGroupInfo>>(
        QStringLiteral("groupsInfo"), { { QStringLiteral("groupIDs"), QJsonArray::fromStringList(groupIDs) } },
        [](const QJsonObject &result) { return groupsFromJson(member(result, "groups")); }, reply);
}

void NetworkBackend::markGroupRead(MessagingSession *, const QString &groupID, Done done)
{
    callDone(QStringLiteral("markGroupRead"), { { QStringLiteral("groupID"), groupID } }, done);
}

void NetworkBackend::markDirectRead(MessagingSession *, const QString &peerID, Done done)
{
    callDone(QStringLiteral("markDirectRead"), { { QStringLiteral("peerID"), peerID } }, done);
}

void NetworkBackend::members(MessagingSession *, const QString &groupID, const QStringList &memberIDs,
    Reply<QList<V2VORGroupMemberFullInfo>> reply)
{
    const QJsonObject args { { QStringLiteral("groupID"), groupID },
        { QStringLiteral("memberIDs"), QJsonArray::fromStringList(memberIDs) } };
    call<QList<V2VORGroupMemberFullInfo>>(
        QStringLiteral("members"), args,
        [](const QJsonObject &result) { return membersFromJson(member(result, "members")); }, reply);
}

void NetworkBackend::usersInfo(MessagingSession *, const QStringList &userIDs, Reply<QList<V2VORUserFullInfo>> reply)
{
    call<QList<V2VORUserFullInfo>>(
        QStringLiteral("usersInfo"), { { QStringLiteral("userIDs"), QJsonArray::fromStringList(userIDs) } },
        [](const QJsonObject &result) { return usersFromJson(member(result, "users")); }, reply);
}

void NetworkBackend::addUser(
    MessagingSession *, const QString &userID, const QString &nickName, const QString &faceURL, Done done)
{
    callDone(QStringLiteral("addUser"),
        { { QStringLiteral("userID"), userID }, { QStringLiteral("nickName"), nickName },
            { QStringLiteral("faceURL"), faceURL } },
        done);
}

void NetworkBackend::createGroup(MessagingSession *, const QString &groupID, const QStringList &memberIDs, Done done)
{
    callDone(QStringLiteral("createGroup"),
        { { QStringLiteral("groupID"), groupID },
            { QStringLiteral("memberIDs"), QJsonArray::fromStringList(memberIDs) } },
        done);
}

void NetworkBackend::setGroupInfo(
    MessagingSession *, const QString &groupID, const QString &groupName, const QString &faceURL, Done done)
{
    callDone(QStringLiteral("setGroupInfo"),
        { { QStringLiteral("groupID"), groupID }, { QStringLiteral("groupName"), groupName },
            { QStringLiteral("faceURL"), faceURL } },
        done);
}

void NetworkBackend::addGroupMember(
    MessagingSession *, const QString &groupID, const QString &userID, const QString &nameCard, Done done)
{
    callDone(QStringLiteral("addGroupMember"),
        { { QStringLiteral("groupID"), groupID }, { QStringLiteral("userID"), userID },
            { QStringLiteral("nameCard"), nameCard } },
        done);
}

void NetworkBackend::setNameCard(
    MessagingSession *, const QString &groupID, const QString &userID, const QString &nameCard, Done done)
{
    callDone(QStringLiteral("setNameCard"),
        { { QStringLiteral("groupID"), groupID }, { QStringLiteral("userID"), userID },
            { QStringLiteral("nameCard"), nameCard } },
        done);
}

void NetworkBackend::setFriendRemark(
    MessagingSession *, const QString &viewerID, const QString &targetID, const QString &remark, Done done)
{
    callDone(QStringLiteral("setFriendRemark"),
        { { QStringLiteral("viewerID"), viewerID }, { QStringLiteral("targetID"), targetID },
            { QStringLiteral("remark"), remark } },
        done);
}

// The connection.

void NetworkBackend::onOpened()
{
    m_proven = false;
    if (m_userID.isEmpty())
        return;
    m_helloID = m_requests.reserveID();
    m_connection->sendFrame(
        encodeRequest(m_helloID, QStringLiteral("hello"), { { QStringLiteral("token"), m_token } }));
}

void NetworkBackend::onDropped()
{
    m_proven = false;
    m_helloID = -1;
    m_requests.requeueOut();
    if (!m_userID.isEmpty())
        setState(V2VOR_CONNECTION_CONNECTING);
}

void NetworkBackend::onFrame(const QByteArray &bytes)
{
    const ServerFrame frame = decodeServerFrame(bytes);
    if (frame.kind == ServerFrame::Event)
        return deliver(frame);
    if (frame.kind == ServerFrame::Invalid) {
        qWarning("NetworkBackend: ignored a frame that is neither a reply nor an event");
        return;
    }
    if (frame.replyTo >= 0 && frame.replyTo == m_helloID)
        return onHello(frame);
    if (!m_requests.answer(frame))
        qWarning("NetworkBackend: reply to no request (%d: %s)", frame.error.code, qPrintable(frame.error.desc));
}

void NetworkBackend::onHello(const ServerFrame &frame)
{
    m_helloID = -1;
    CallError error = frame.error;
    if (!error && stringIn(frame.result, "userID") != m_userID)
        error = { V2VOR_ERR_AUTH_FAILED, QStringLiteral("the server knows this token as another user") };
    if (error)
        return refuse(error);
    m_proven = true;
    const bool reconnected = m_everProven;
    m_everProven = true;
    setState(V2VOR_CONNECTION_CONNECTED);
    finishLogin({});
    flush();
    if (reconnected)
        toSession([](MessagingSession *session) { session->receiveReconnected(); });
}

void NetworkBackend::finishLogin(const CallError &error)
{
    if (Done done = std::exchange(m_loginDone, nullptr))
        done(error);
}

void NetworkBackend::refuse(const CallError &error)
{
    m_connection->close();
    m_proven = false;
    m_helloID = -1;
    setState(V2VOR_CONNECTION_DISCONNECTED);
    finishLogin(error);
    m_requests.failAll(error);
}

void NetworkBackend::flush()
{
    if (!m_proven)
        return;
    const QList<QByteArray> frames = m_requests.takeWaiting();
    for (const QByteArray &frame : frames)
        m_connection->sendFrame(frame);
}

void NetworkBackend::setState(V2VORConnectionState state)
{
    if (m_state == state)
        return;
    m_state = state;
    toSession([state](MessagingSession *session) { session->receiveConnectionState(state); });
}

void NetworkBackend::toSession(std::function<void(MessagingSession *)> call)
{
    MessagingSession *session = m_session;
    if (!session || !m_attached.contains(session))
        return;
    platform::MainQueue::async(session->sessionContext(), [session, call] { call(session); });
}

void NetworkBackend::deliver(const ServerFrame &event)
{
    if (SessionEvent call = readSessionEvent(event))
        toSession(std::move(call));
    else
        qWarning("NetworkBackend: ignored an unreadable \"%s\" event", qPrintable(event.event));
}
