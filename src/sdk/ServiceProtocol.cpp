#include "sdk/ServiceProtocol.h"

#include <QJsonDocument>
#include <cmath>

namespace ServiceProtocol {

namespace {

CallError malformed(const QString &why)
{
    return { V2VOR_ERR_PROTOCOL_MALFORMED, why };
}

QByteArray compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

/// Reads an optional string member; false when present with another type.
bool readString(const QJsonObject &object, const char *name, QString &out)
{
    const QJsonValue value = object.value(QLatin1String(name));
    if (value.isUndefined())
        return true;
    if (!value.isString())
        return false;
    out = value.toString();
    return true;
}

bool readBool(const QJsonObject &object, const char *name, bool &out)
{
    const QJsonValue value = object.value(QLatin1String(name));
    if (value.isUndefined())
        return true;
    if (!value.isBool())
        return false;
    out = value.toBool();
    return true;
}

template<typename Number> bool readNumber(const QJsonObject &object, const char *name, Number &out)
{
    const QJsonValue value = object.value(QLatin1String(name));
    if (value.isUndefined())
        return true;
    if constexpr (std::is_floating_point_v<Number>) {
        if (!value.isDouble())
            return false;
        out = value.toDouble();
        return true;
    } else {
        const std::optional<quint64> count = countFromJson(value);
        if (!count || *count > quint64(std::numeric_limits<Number>::max()))
            return false;
        out = Number(*count);
        return true;
    }
}

template<typename T, typename Read>
std::optional<QList<T>> listFromJson(const QJsonValue &value, Read read)
{
    if (!value.isArray())
        return std::nullopt;
    QList<T> list;
    const QJsonArray array = value.toArray();
    list.reserve(array.size());
    for (const QJsonValue &item : array) {
        std::optional<T> read_ = read(item);
        if (!read_)
            return std::nullopt;
        list.append(std::move(*read_));
    }
    return list;
}

} // namespace

std::optional<quint64> countFromJson(const QJsonValue &value)
{
    if (!value.isDouble())
        return std::nullopt;
    const double number = value.toDouble();
    // 2^53: beyond it a JSON number no longer holds every whole number.
    if (!(number >= 0 && number <= 9007199254740992.0) || std::floor(number) != number)
        return std::nullopt;
    return quint64(number);
}

std::optional<QStringList> stringsFromJson(const QJsonValue &value)
{
    return listFromJson<QString>(value, [](const QJsonValue &item) -> std::optional<QString> {
        if (!item.isString())
            return std::nullopt;
        return item.toString();
    });
}

DecodedRequest decodeRequest(const QByteArray &frame)
{
    DecodedRequest decoded;
    if (frame.size() > kMaxFrameBytes) {
        decoded.error = { V2VOR_ERR_PROTOCOL_FRAME_TOO_LARGE,
            QStringLiteral("frame of %1 bytes exceeds %2 bytes").arg(frame.size()).arg(kMaxFrameBytes) };
        return decoded;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(frame, &parseError);
    if (parseError.error != QJsonParseError::NoError || !document.isObject()) {
        decoded.error = malformed(QStringLiteral("a frame is one JSON object"));
        return decoded;
    }
    const QJsonObject object = document.object();
    if (const std::optional<quint64> id = countFromJson(object.value(QLatin1String("id"))))
        decoded.request.id = qint64(*id);
    const QJsonValue version = object.value(QLatin1String("v"));
    if (!version.isDouble()) {
        decoded.error = malformed(QStringLiteral("a frame names its protocol version in \"v\""));
    } else if (version.toDouble() != kVersion) {
        decoded.error = { V2VOR_ERR_PROTOCOL_VERSION,
            QStringLiteral("protocol version %1 is not spoken here; use %2").arg(version.toDouble()).arg(kVersion) };
    } else if (decoded.request.id < 0) {
        decoded.error = malformed(QStringLiteral("a request carries a whole number \"id\""));
    } else if (!object.value(QLatin1String("op")).isString()) {
        decoded.error = malformed(QStringLiteral("a request names its operation in \"op\""));
    } else if (const QJsonValue args = object.value(QLatin1String("args")); !args.isUndefined() && !args.isObject()) {
        decoded.error = malformed(QStringLiteral("\"args\" is an object"));
    } else {
        decoded.request.op = object.value(QLatin1String("op")).toString();
        decoded.request.args = args.toObject();
    }
    return decoded;
}

QByteArray encodeRequest(qint64 id, const QString &op, const QJsonObject &args)
{
    return compact({ { QStringLiteral("v"), kVersion }, { QStringLiteral("id"), id }, { QStringLiteral("op"), op },
        { QStringLiteral("args"), args } });
}

ServerFrame decodeServerFrame(const QByteArray &frame)
{
    ServerFrame decoded;
    const QJsonDocument document = QJsonDocument::fromJson(frame);
    const QJsonObject object = document.object();
    if (!document.isObject() || object.value(QLatin1String("v")).toDouble() != kVersion)
        return decoded;
    if (object.value(QLatin1String("ev")).isString()) {
        decoded.kind = ServerFrame::Event;
        decoded.event = object.value(QLatin1String("ev")).toString();
        decoded.data = object.value(QLatin1String("data")).toObject();
        return decoded;
    }
    const QJsonValue replyTo = object.value(QLatin1String("re"));
    const std::optional<quint64> code = countFromJson(object.value(QLatin1String("code")));
    if ((!replyTo.isNull() && !countFromJson(replyTo)) || !code)
        return decoded;
    decoded.kind = ServerFrame::Reply;
    decoded.replyTo = replyTo.isNull() ? -1 : qint64(*countFromJson(replyTo));
    decoded.error = { int(*code), object.value(QLatin1String("desc")).toString() };
    decoded.result = object.value(QLatin1String("result")).toObject();
    return decoded;
}

QByteArray encodeReply(qint64 replyTo, const CallError &error, const QJsonObject &result)
{
    QJsonObject reply { { QStringLiteral("v"), kVersion },
        { QStringLiteral("re"), replyTo < 0 ? QJsonValue() : QJsonValue(replyTo) },
        { QStringLiteral("code"), error.code }, { QStringLiteral("desc"), error.desc } };
    if (!result.isEmpty())
        reply.insert(QStringLiteral("result"), result);
    return compact(reply);
}

QByteArray encodeEvent(const QString &event, const QJsonObject &data)
{
    return compact({ { QStringLiteral("v"), kVersion }, { QStringLiteral("ev"), event }, { QStringLiteral("data"), data } });
}

QJsonObject toJson(const V2VORMessage &message)
{
    QJsonObject object { { QStringLiteral("msgID"), message.msgID() }, { QStringLiteral("seq"), double(message.seq()) },
        { QStringLiteral("groupID"), message.groupID() }, { QStringLiteral("userID"), message.userID() },
        { QStringLiteral("sender"), message.sender() }, { QStringLiteral("nickName"), message.nickName() },
        { QStringLiteral("faceURL"), message.faceURL() }, { QStringLiteral("timestamp"), message.timestamp() },
        { QStringLiteral("isSelf"), message.isSelf() }, { QStringLiteral("status"), message.status() },
        { QStringLiteral("elemType"), message.elemType() }, { QStringLiteral("text"), message.text() },
        { QStringLiteral("supportExtension"), message.supportMessageExtension() },
        { QStringLiteral("version"), double(message.messageVersion()) } };
    if (const V2VORCustomElem *custom = message.customElem()) {
        object.insert(QStringLiteral("data"), QString::fromLatin1(custom->data.toBase64()));
        object.insert(QStringLiteral("desc"), custom->desc);
        object.insert(QStringLiteral("extension"), custom->extension);
    }
    return object;
}

V2VORMessagePtr messageFromJson(const QJsonValue &value)
{
    if (!value.isObject())
        return nullptr;
    const QJsonObject object = value.toObject();
    QString msgID, groupID, userID, sender, nickName, faceURL, text, data, desc, extension;
    quint64 seq = 0, version = 0;
    double timestamp = 0;
    bool isSelf = false, supportExtension = false;
    int status = V2VOR_MSG_STATUS_SENDING, elemType = V2VOR_ELEM_TYPE_NONE;
    const bool ok = readString(object, "msgID", msgID) && readNumber(object, "seq", seq)
        && readString(object, "groupID", groupID) && readString(object, "userID", userID)
        && readString(object, "sender", sender) && readString(object, "nickName", nickName)
        && readString(object, "faceURL", faceURL) && readNumber(object, "timestamp", timestamp)
        && readBool(object, "isSelf", isSelf) && readNumber(object, "status", status)
        && readNumber(object, "elemType", elemType) && readString(object, "text", text)
        && readBool(object, "supportExtension", supportExtension) && readNumber(object, "version", version)
        && readString(object, "data", data) && readString(object, "desc", desc)
        && readString(object, "extension", extension);
    if (!ok)
        return nullptr;
    const auto decoded = QByteArray::fromBase64Encoding(data.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return nullptr;

    auto message = std::make_shared<V2VORMessage>();
    message->setMsgID(msgID);
    message->setSeq(seq);
    message->setGroupID(groupID);
    message->setUserID(userID);
    message->setSender(sender);
    message->setNickName(nickName);
    message->setFaceURL(faceURL);
    message->setTimestamp(timestamp);
    message->setIsSelf(isSelf);
    message->setStatus(status);
    message->setElemType(elemType);
    message->setText(text);
    message->setSupportMessageExtension(supportExtension);
    message->setMessageVersion(version);
    if (elemType == V2VOR_ELEM_TYPE_CUSTOM)
        message->setCustomElem(std::make_unique<V2VORCustomElem>(V2VORCustomElem { *decoded, desc, extension }));
    return message;
}

QJsonArray toJson(const QList<V2VORMessagePtr> &messages)
{
    QJsonArray array;
    for (const V2VORMessagePtr &message : messages)
        array.append(toJson(*message));
    return array;
}

std::optional<QList<V2VORMessagePtr>> messagesFromJson(const QJsonValue &value)
{
    return listFromJson<V2VORMessagePtr>(value, [](const QJsonValue &item) -> std::optional<V2VORMessagePtr> {
        V2VORMessagePtr message = messageFromJson(item);
        if (!message)
            return std::nullopt;
        return message;
    });
}

QJsonObject toJson(const V2VORConversation &conversation)
{
    QJsonObject object { { QStringLiteral("conversationID"), conversation.conversationID },
        { QStringLiteral("type"), conversation.type }, { QStringLiteral("userID"), conversation.userID },
        { QStringLiteral("groupID"), conversation.groupID }, { QStringLiteral("showName"), conversation.showName },
        { QStringLiteral("faceURL"), conversation.faceURL }, { QStringLiteral("unreadCount"), conversation.unreadCount },
        { QStringLiteral("orderKey"), double(conversation.orderKey) } };
    if (conversation.lastMessage)
        object.insert(QStringLiteral("lastMessage"), toJson(*conversation.lastMessage));
    return object;
}

std::optional<V2VORConversation> conversationFromJson(const QJsonValue &value)
{
    if (!value.isObject())
        return std::nullopt;
    const QJsonObject object = value.toObject();
    V2VORConversation conversation;
    const bool ok = readString(object, "conversationID", conversation.conversationID)
        && readNumber(object, "type", conversation.type) && readString(object, "userID", conversation.userID)
        && readString(object, "groupID", conversation.groupID) && readString(object, "showName", conversation.showName)
        && readString(object, "faceURL", conversation.faceURL)
        && readNumber(object, "unreadCount", conversation.unreadCount)
        && readNumber(object, "orderKey", conversation.orderKey);
    if (!ok)
        return std::nullopt;
    const QJsonValue last = object.value(QLatin1String("lastMessage"));
    if (!last.isUndefined()) {
        conversation.lastMessage = messageFromJson(last);
        if (!conversation.lastMessage)
            return std::nullopt;
    }
    return conversation;
}

QJsonArray toJson(const QList<V2VORMessageExtension> &extensions)
{
    QJsonArray array;
    for (const V2VORMessageExtension &extension : extensions)
        array.append(QJsonObject { { QStringLiteral("key"), extension.extensionKey },
            { QStringLiteral("value"), extension.extensionValue } });
    return array;
}

std::optional<QList<V2VORMessageExtension>> extensionsFromJson(const QJsonValue &value)
{
    return listFromJson<V2VORMessageExtension>(
        value, [](const QJsonValue &item) -> std::optional<V2VORMessageExtension> {
            const QJsonObject object = item.toObject();
            if (!object.value(QLatin1String("key")).isString() || !object.value(QLatin1String("value")).isString())
                return std::nullopt;
            return V2VORMessageExtension { object.value(QLatin1String("key")).toString(),
                object.value(QLatin1String("value")).toString() };
        });
}

QJsonArray toJson(const QList<V2VORMessageExtensionResult> &results)
{
    QJsonArray array;
    for (const V2VORMessageExtensionResult &result : results)
        array.append(QJsonObject { { QStringLiteral("code"), result.resultCode },
            { QStringLiteral("info"), result.resultInfo }, { QStringLiteral("key"), result.extension.extensionKey },
            { QStringLiteral("value"), result.extension.extensionValue } });
    return array;
}

std::optional<QList<V2VORMessageExtensionResult>> resultsFromJson(const QJsonValue &value)
{
    return listFromJson<V2VORMessageExtensionResult>(
        value, [](const QJsonValue &item) -> std::optional<V2VORMessageExtensionResult> {
            const QJsonObject object = item.toObject();
            V2VORMessageExtensionResult result;
            if (!item.isObject() || !readNumber(object, "code", result.resultCode)
                || !readString(object, "info", result.resultInfo)
                || !readString(object, "key", result.extension.extensionKey)
                || !readString(object, "value", result.extension.extensionValue))
                return std::nullopt;
            return result;
        });
}

QJsonObject toJson(const QHash<QString, quint64> &versions)
{
    QJsonObject object;
    for (auto it = versions.cbegin(); it != versions.cend(); ++it)
        object.insert(it.key(), double(it.value()));
    return object;
}

std::optional<QHash<QString, quint64>> versionsFromJson(const QJsonValue &value)
{
    if (!value.isObject())
        return std::nullopt;
    QHash<QString, quint64> versions;
    const QJsonObject object = value.toObject();
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        const std::optional<quint64> version = countFromJson(it.value());
        if (!version)
            return std::nullopt;
        versions.insert(it.key(), *version);
    }
    return versions;
}

QJsonArray toJson(const QList<V2VORGroupMemberFullInfo> &members)
{
    QJsonArray array;
    for (const V2VORGroupMemberFullInfo &member : members)
        array.append(QJsonObject { { QStringLiteral("userID"), member.userID },
            { QStringLiteral("nickName"), member.nickName }, { QStringLiteral("faceURL"), member.faceURL },
            { QStringLiteral("nameCard"), member.nameCard }, { QStringLiteral("friendRemark"), member.friendRemark } });
    return array;
}

std::optional<QList<V2VORGroupMemberFullInfo>> membersFromJson(const QJsonValue &value)
{
    return listFromJson<V2VORGroupMemberFullInfo>(
        value, [](const QJsonValue &item) -> std::optional<V2VORGroupMemberFullInfo> {
            const QJsonObject object = item.toObject();
            V2VORGroupMemberFullInfo member;
            if (!item.isObject() || !readString(object, "userID", member.userID)
                || !readString(object, "nickName", member.nickName) || !readString(object, "faceURL", member.faceURL)
                || !readString(object, "nameCard", member.nameCard)
                || !readString(object, "friendRemark", member.friendRemark))
                return std::nullopt;
            return member;
        });
}

QJsonArray toJson(const QList<V2VORUserFullInfo> &users)
{
    QJsonArray array;
    for (const V2VORUserFullInfo &user : users)
        array.append(QJsonObject { { QStringLiteral("userID"), user.userID },
            { QStringLiteral("nickName"), user.nickName }, { QStringLiteral("faceURL"), user.faceURL } });
    return array;
}

std::optional<QList<V2VORUserFullInfo>> usersFromJson(const QJsonValue &value)
{
    return listFromJson<V2VORUserFullInfo>(value, [](const QJsonValue &item) -> std::optional<V2VORUserFullInfo> {
        const QJsonObject object = item.toObject();
        V2VORUserFullInfo user;
        if (!item.isObject() || !readString(object, "userID", user.userID)
            || !readString(object, "nickName", user.nickName) || !readString(object, "faceURL", user.faceURL))
            return std::nullopt;
        return user;
    });
}

QJsonArray toJson(const QList<V2VORGroupInfo> &groups)
{
    QJsonArray array;
    for (const V2VORGroupInfo &group : groups)
        array.append(QJsonObject { { QStringLiteral("groupID"), group.groupID },
            { QStringLiteral("groupName"), group.groupName }, { QStringLiteral("faceURL"), group.faceURL } });
    return array;
}

std::optional<QList<V2VORGroupInfo>> groupsFromJson(const QJsonValue &value)
{
    return listFromJson<V2VORGroupInfo>(value, [](const QJsonValue &item) -> std::optional<V2VORGroupInfo> {
        const QJsonObject object = item.toObject();
        V2VORGroupInfo group;
        if (!item.isObject() || !readString(object, "groupID", group.groupID)
            || !readString(object, "groupName", group.groupName) || !readString(object, "faceURL", group.faceURL))
            return std::nullopt;
        return group;
    });
}

} // namespace ServiceProtocol
