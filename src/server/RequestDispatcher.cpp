#include "server/RequestDispatcher.h"

#include "sdk/MessagingBackend.h"
#include "sdk/ServiceProtocol.h"

using namespace RequestArgs;
using ServiceProtocol::toJson;

namespace {

/// A backend answer without a value.
MessagingBackend::Done done(const RequestDispatcher::Answer &answer)
{
    return [answer](const CallError &error) { answer(error, {}); };
}

/// A backend answer whose value goes into "result" under `name`, also when it comes with an
/// error (a modification's conflict carries the current message).
template<typename T, typename Write>
MessagingBackend::Reply<T> valued(const RequestDispatcher::Answer &answer, const char *name, Write write)
{
    return [answer, name, write](const ServiceReply<T> &reply) {
        QJsonObject result;
        if (std::optional<QJsonValue> value = write(reply.value))
            result.insert(QLatin1String(name), *value);
        answer(reply.error, result);
    };
}

std::optional<QJsonValue> messageValue(const V2VORMessagePtr &message)
{
    if (!message)
        return std::nullopt;
    return toJson(*message);
}

template<typename T> std::optional<QJsonValue> listValue(const T &list)
{
    return toJson(list);
}

MessagingBackend::ExtensionDone extensionsDone(const RequestDispatcher::Answer &answer, bool read)
{
    return [answer, read](const ExtensionReply &reply) {
        QJsonObject result { { QStringLiteral("versions"), toJson(reply.versions) } };
        if (read)
            result.insert(QStringLiteral("extensions"), toJson(reply.extensions));
        else
            result.insert(QStringLiteral("results"), toJson(reply.results));
        answer(reply.error, result);
    };
}

} // namespace

RequestDispatcher::RequestDispatcher(MessagingBackend *backend, MessagingSession *session)
    : m_backend(backend)
    , m_session(session)
{
}

void RequestDispatcher::dispatch(const Args &args, const Answer &answer)
{
    std::visit([&](const auto &parsed) { run(parsed, answer); }, args);
}

void RequestDispatcher::run(const Hello &, const Answer &answer)
{
    answer({ V2VOR_ERR_PROTOCOL_MALFORMED, QStringLiteral("hello is the connection's first request") }, {});
}

void RequestDispatcher::run(const Ping &, const Answer &answer)
{
    answer({}, {});
}

void RequestDispatcher::run(const SendMessage &args, const Answer &answer)
{
    // The service names a message the client left unnamed.
    if (args.message->msgID().isEmpty())
        args.message->setMsgID(m_backend->newMessageID());
    const SendRecord record { args.message->msgID(), args.priority, args.onlineUserOnly, args.offlinePushInfo };
    m_backend->send(m_session, args.message, args.receiver, args.groupID, record,
        valued<V2VORMessagePtr>(answer, "message", messageValue));
}

void RequestDispatcher::run(const History &args, const Answer &answer)
{
    m_backend->history(m_session, args.groupID, args.count, args.beforeSeq,
        valued<QList<V2VORMessagePtr>>(answer, "messages", listValue<QList<V2VORMessagePtr>>));
}

void RequestDispatcher::run(const DirectHistory &args, const Answer &answer)
{
    m_backend->directHistory(m_session, args.peerID, args.count, args.beforeSeq,
        valued<QList<V2VORMessagePtr>>(answer, "messages", listValue<QList<V2VORMessagePtr>>));
}

void RequestDispatcher::run(const ModifyMessage &args, const Answer &answer)
{
    m_backend->modify(m_session, *args.message, valued<V2VORMessagePtr>(answer, "message", messageValue));
}

void RequestDispatcher::run(const MessageAt &args, const Answer &answer)
{
    m_backend->messageAt(m_session, args.groupID, args.seq,
        valued<QString>(answer, "msgID", [](const QString &msgID) -> std::optional<QJsonValue> { return msgID; }));
}

void RequestDispatcher::run(const GetExtensions &args, const Answer &answer)
{
    m_backend->getExtensions(m_session, args.msgID, extensionsDone(answer, true));
}

void RequestDispatcher::run(const SetExtensions &args, const Answer &answer)
{
    m_backend->setExtensions(m_session, args.msgID, args.extensions, args.seen, extensionsDone(answer, false));
}

void RequestDispatcher::run(const DeleteExtensions &args, const Answer &answer)
{
    m_backend->deleteExtensions(m_session, args.msgID, args.keys, extensionsDone(answer, false));
}

void RequestDispatcher::run(const ConversationList &, const Answer &answer)
{
    m_backend->conversationList(m_session,
        valued<QList<V2VORConversation>>(
            answer, "conversations", [](const QList<V2VORConversation> &list) -> std::optional<QJsonValue> {
                QJsonArray array;
                for (const V2VORConversation &conversation : list)
                    array.append(toJson(conversation));
                return array;
            }));
}

void RequestDispatcher::run(const GroupsInfo &args, const Answer &answer)
{
    m_backend->groupsInfo(
        m_session, args.groupIDs, valued<QList<V2VORGroupInfo>>(answer, "groups", listValue<QList<V2VORGroupInfo>>));
}

void RequestDispatcher::run(const MarkGroupRead &args, const Answer &answer)
{
    m_backend->markGroupRead(m_session, args.groupID, done(answer));
}

void RequestDispatcher::run(const MarkDirectRead &args, const Answer &answer)
{
    m_backend->markDirectRead(m_session, args.peerID, done(answer));
}

void RequestDispatcher::run(const Members &args, const Answer &answer)
{
    m_backend->members(m_session, args.groupID, args.memberIDs,
        valued<QList<V2VORGroupMemberFullInfo>>(answer, "members", listValue<QList<V2VORGroupMemberFullInfo>>));
}

void RequestDispatcher::run(const UsersInfo &args, const Answer &answer)
{
    m_backend->usersInfo(m_session, args.userIDs,
        valued<QList<V2VORUserFullInfo>>(answer, "users", listValue<QList<V2VORUserFullInfo>>));
}

void RequestDispatcher::run(const AddUser &args, const Answer &answer)
{
    m_backend->addUser(m_session, args.userID, args.nickName, args.faceURL, done(answer));
}

void RequestDispatcher::run(const CreateGroup &args, const Answer &answer)
{
    m_backend->createGroup(m_session, args.groupID, args.memberIDs, done(answer));
}

void RequestDispatcher::run(const SetGroupInfo &args, const Answer &answer)
{
    m_backend->setGroupInfo(m_session, args.groupID, args.groupName, args.faceURL, done(answer));
}

void RequestDispatcher::run(const AddGroupMember &args, const Answer &answer)
{
    m_backend->addGroupMember(m_session, args.groupID, args.userID, args.nameCard, done(answer));
}

void RequestDispatcher::run(const SetNameCard &args, const Answer &answer)
{
    m_backend->setNameCard(m_session, args.groupID, args.userID, args.nameCard, done(answer));
}

void RequestDispatcher::run(const SetFriendRemark &args, const Answer &answer)
{
    m_backend->setFriendRemark(m_session, args.viewerID, args.targetID, args.remark, done(answer));
}
