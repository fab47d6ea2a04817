// The JSON protocol between messaging clients and a messaging server: frames (requests with
// IDs, replies, pushed events) and the JSON form of every value they carry. Client and server
// both speak it through these functions, so the two ends cannot drift apart.
//
//   request  {"v": 1, "id": 7, "op": "setExtensions", "args": {...}}
//   reply    {"v": 1, "re": 7, "code": 0, "desc": "", "result": {...}}
//   event    {"v": 1, "ev": "extensionsChanged", "data": {...}}
//
// A frame the server cannot read is answered with "re": null and the code saying why.
#pragma once

#include "sdk/ServiceReply.h"
#include "sdk/V2VORConversation.h"
#include "sdk/V2VORGroupInfo.h"
#include "sdk/V2VORGroupMemberFullInfo.h"
#include "sdk/V2VORMessage.h"
#include "sdk/V2VORUserFullInfo.h"

#include <QJsonArray>
#include <QJsonObject>
#include <optional>

namespace ServiceProtocol {

constexpr int kVersion = 1;
/// The largest frame either end accepts: a 12 KB body or 20 extensions of 1 KB with room to spare.
constexpr qsizetype kMaxFrameBytes = 64 * 1024;

/// A request as the server reads it. `id` is -1 when the frame did not carry a usable one.
struct Request
{
    qint64 id = -1;
    QString op;
    QJsonObject args;
};

/// Reads one client frame. On failure `error` says why and `request.id` is the frame's ID when
/// it could be read, so the reply can name the request.
struct DecodedRequest
{
    Request request;
    CallError error;
};
DecodedRequest decodeRequest(const QByteArray &frame);
QByteArray encodeRequest(qint64 id, const QString &op, const QJsonObject &args);

/// A reply or an event as the client reads it.
struct ServerFrame
{
    enum Kind { Reply, Event, Invalid } kind = Invalid;
    /// The request answered; -1 for an answer to an unreadable frame.
    qint64 replyTo = -1;
    CallError error;
    QJsonObject result;
    QString event;
    QJsonObject data;
};
ServerFrame decodeServerFrame(const QByteArray &frame);
/// `replyTo` -1 writes "re": null.
QByteArray encodeReply(qint64 replyTo, const CallError &error, const QJsonObject &result = {});
QByteArray encodeEvent(const QString &event, const QJsonObject &data);

// Values. The readers accept what the writers write and answer nullopt (or null) for anything
// ill-typed, never guessing.
QJsonObject toJson(const V2VORMessage &message);
V2VORMessagePtr messageFromJson(const QJsonValue &value);
QJsonArray toJson(const QList<V2VORMessagePtr> &messages);
std::optional<QList<V2VORMessagePtr>> messagesFromJson(const QJsonValue &value);

QJsonObject toJson(const V2VORConversation &conversation);
std::optional<V2VORConversation> conversationFromJson(const QJsonValue &value);

QJsonArray toJson(const QList<V2VORMessageExtension> &extensions);
std::optional<QList<V2VORMessageExtension>> extensionsFromJson(const QJsonValue &value);
QJsonArray toJson(const QList<V2VORMessageExtensionResult> &results);
std::optional<QList<V2VORMessageExtensionResult>> resultsFromJson(const QJsonValue &value);
QJsonObject toJson(const QHash<QString, quint64> &versions);
std::optional<QHash<QString, quint64>> versionsFromJson(const QJsonValue &value);

QJsonArray toJson(const QList<V2VORGroupMemberFullInfo> &members);
std::optional<QList<V2VORGroupMemberFullInfo>> membersFromJson(const QJsonValue &value);
QJsonArray toJson(const QList<V2VORUserFullInfo> &users);
std::optional<QList<V2VORUserFullInfo>> usersFromJson(const QJsonValue &value);
QJsonArray toJson(const QList<V2VORGroupInfo> &groups);
std::optional<QList<V2VORGroupInfo>> groupsFromJson(const QJsonValue &value);

std::optional<QStringList> stringsFromJson(const QJsonValue &value);
/// A whole non-negative number (sequences, versions, counts) held exactly by a JSON number.
std::optional<quint64> countFromJson(const QJsonValue &value);

} // namespace ServiceProtocol
