// Reading a messaging server's replies strictly, and writing the request arguments that have
// no JSON form of their own. A reply whose result does not hold what the operation answers
// fails with V2VOR_ERR_PROTOCOL_MALFORMED ("unreadable reply"); nothing is guessed.
#pragma once

#include "sdk/ServiceProtocol.h"
#include "sdk/V2VOROfflinePushInfo.h"

namespace NetworkReplies {

CallError unreadable(const QString &op);
QJsonValue member(const QJsonObject &object, const char *name);

std::optional<V2VORMessagePtr> messageIn(const QJsonObject &result);
std::optional<QList<V2VORMessagePtr>> messagesIn(const QJsonObject &result);
std::optional<QString> stringIn(const QJsonObject &result, const char *name);
std::optional<QList<V2VORConversation>> conversationsIn(const QJsonObject &result);

/// The answer of `op`: the frame's error, and the value `decode` reads from its result. Some
/// failures carry a value too (a modification conflict: the service's current message).
template<typename T, typename Decode>
ServiceReply<T> readReply(const QString &op, const ServiceProtocol::ServerFrame &frame, const Decode &decode)
{
    ServiceReply<T> answer { frame.error, {} };
    if (std::optional<T> value = decode(frame.result))
        answer.value = std::move(*value);
    else if (!frame.error)
        answer.error = unreadable(op);
    return answer;
}

/// The answer of an extension operation on `msgID`. `resent`: what a write that went out
/// again after a drop wrote; a conflict that meets exactly our own value is that earlier
/// attempt of ours having landed, so it counts as success.
ExtensionReply readExtensionReply(const QString &op, const QString &msgID, const ServiceProtocol::ServerFrame &frame,
    const QList<V2VORMessageExtension> &resent);

QJsonObject pushInfoJson(const V2VOROfflinePushInfo &info);
QJsonObject pageArgs(const char *who, const QString &id, int count, quint64 beforeSeq);

} // namespace NetworkReplies
