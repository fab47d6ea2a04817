#include "server/RequestArgs.h"

#include "sdk/ServiceProtocol.h"

#include <limits>

namespace RequestArgs {

namespace {

enum Need { Required, Optional };

/// Reads members one after another, keeping the first complaint; once one is made the rest
/// answer defaults.
class ArgReader
{
public:
    explicit ArgReader(const QJsonObject &args)
        : m_args(args)
    {
    }

    const CallError &error() const { return m_error; }

    QString string(const char *name, Need need = Required)
    {
        const QJsonValue value = member(name, need);
        if (!value.isUndefined() && !value.isString())
            complain(name, "a string");
        return value.toString();
    }

    bool flag(const char *name)
    {
        const QJsonValue value = member(name, Optional);
        if (!value.isUndefined() && !value.isBool())
            complain(name, "true or false");
        return value.toBool();
    }

    quint64 count(const char *name, Need need = Required, quint64 max = std::numeric_limits<quint64>::max())
    {
        return read<quint64>(name, need, "a whole number in range", [max](const QJsonValue &value) {
            const std::optional<quint64> count = ServiceProtocol::countFromJson(value);
            return count && *count <= max ? count : std::nullopt;
        });
    }

    int number(const char *name, Need need = Required)
    {
        return int(count(name, need, quint64(std::numeric_limits<int>::max())));
    }

    QStringList strings(const char *name, Need need = Required)
    {
        return read<QStringList>(name, need, "an array of strings", ServiceProtocol::stringsFromJson);
    }

    V2VORMessagePtr message(const char *name)
    {
        const QJsonValue value = member(name, Required);
        V2VORMessagePtr message = value.isUndefined() ? nullptr : ServiceProtocol::messageFromJson(value);
        if (!value.isUndefined() && !message)
            complain(name, "a message");
        return message;
    }

    QList<V2VORMessageExtension> extensions(const char *name)
    {
        return read<QList<V2VORMessageExtension>>(
            name, Required, "an array of {\"key\", \"value\"}", ServiceProtocol::extensionsFromJson);
    }

    QHash<QString, quint64> versions(const char *name)
    {
        return read<QHash<QString, quint64>>(
            name, Optional, "an object of versions", ServiceProtocol::versionsFromJson);
    }

    std::optional<V2VOROfflinePushInfo> pushInfo(const char *name);

private:
    QJsonValue member(const char *name, Need need)
    {
        if (m_error)
            return QJsonValue(QJsonValue::Undefined);
        const QJsonValue value = m_args.value(QLatin1String(name));
        if (value.isUndefined() && need == Required)
            m_error = { V2VOR_ERR_PROTOCOL_MALFORMED, QStringLiteral("\"%1\" is missing").arg(QLatin1String(name)) };
        return value;
    }

    template<typename T, typename Read> T read(const char *name, Need need, const char *what, Read readValue)
    {
        const QJsonValue value = member(name, need);
        if (value.isUndefined())
            return T {};
        const std::optional<T> read_ = readValue(value);
        if (!read_)
            complain(name, what);
        return read_.value_or(T {});
    }

    void complain(const char *name, const char *what)
    {
        m_error = { V2VOR_ERR_PROTOCOL_MALFORMED,
            QStringLiteral("\"%1\" must be %2").arg(QLatin1String(name), QLatin1String(what)) };
    }

    QJsonObject m_args;
    CallError m_error;
};

std::optional<V2VOROfflinePushInfo> ArgReader::pushInfo(const char *name)
{
    const QJsonValue value = member(name, Optional);
    if (value.isUndefined() || value.isNull())
        return std::nullopt;
    if (!value.isObject()) {
        complain(name, "an object");
        return std::nullopt;
    }
    ArgReader push(value.toObject());
    V2VOROfflinePushInfo info { push.string("title", Optional), push.string("desc", Optional),
        push.string("ext", Optional), push.flag("disablePush"), push.string("AndroidOPPOChannelID", Optional),
        push.string("AndroidSound", Optional), push.string("AndroidHuaWeiCategory", Optional),
        push.string("AndroidVIVOCategory", Optional) };
    if (push.error()) {
        m_error = { V2VOR_ERR_PROTOCOL_MALFORMED,
            QStringLiteral("in \"%1\": %2").arg(QLatin1String(name), push.error().desc) };
        return std::nullopt;
    }
    return info;
}

using Parser = Args (*)(ArgReader &);

struct Operation
{
    const char *name;
    Parser parse;
    bool directory;
};

// Braced initializers evaluate left to right, so members are read (and complained of) in order.
const Operation kOperations[] = {
    { "hello", [](ArgReader &r) -> Args { return Hello { r.string("token", Optional) }; }, false },
    { "ping", [](ArgReader &) -> Args { return Ping {}; }, false },
    { "sendMessage",
        [](ArgReader &r) -> Args {
            return SendMessage { r.message("message"), r.string("receiver", Optional), r.string("groupID", Optional),
                r.number("priority", Optional), r.flag("onlineUserOnly"), r.pushInfo("offlinePushInfo") };
        },
        false },
    { "history",
        [](ArgReader &r) -> Args {
            return History { r.string("groupID"), r.number("count"), r.count("beforeSeq", Optional) };
        },
        false },
    { "directHistory",
        [](ArgReader &r) -> Args {
            return DirectHistory { r.string("peerID"), r.number("count"), r.count("beforeSeq", Optional) };
        },
        false },
    { "modifyMessage", [](ArgReader &r) -> Args { return ModifyMessage { r.message("message") }; }, false },
    { "messageAt",
        [](ArgReader &r) -> Args {
            return MessageAt { r.string("groupID"), r.count("seq") };
        },
        false },
    { "getExtensions", [](ArgReader &r) -> Args { return GetExtensions { r.string("msgID") }; }, false },
    { "setExtensions",
        [](ArgReader &r) -> Args {
            return SetExtensions { r.string("msgID"), r.extensions("extensions"), r.versions("seen") };
        },
        false },
    { "deleteExtensions",
        [](ArgReader &r) -> Args {
            return DeleteExtensions { r.string("msgID"), r.strings("keys") };
        },
        false },
    { "conversationList", [](ArgReader &) -> Args { return ConversationList {}; }, false },
    { "groupsInfo", [](ArgReader &r) -> Args { return GroupsInfo { r.strings("groupIDs") }; }, false },
    { "markGroupRead", [](ArgReader &r) -> Args { return MarkGroupRead { r.string("groupID") }; }, false },
    { "markDirectRead", [](ArgReader &r) -> Args { return MarkDirectRead { r.string("peerID") }; }, false },
    { "members",
        [](ArgReader &r) -> Args {
            return Members { r.string("groupID"), r.strings("memberIDs", Optional) };
        },
        false },
    { "usersInfo", [](ArgReader &r) -> Args { return UsersInfo { r.strings("userIDs") }; }, false },
    { "addUser",
        [](ArgReader &r) -> Args {
            return AddUser { r.string("userID"), r.string("nickName", Optional), r.string("faceURL", Optional) };
        },
        true },
    { "createGroup",
        [](ArgReader &r) -> Args {
            return CreateGroup { r.string("groupID"), r.strings("memberIDs", Optional) };
        },
        true },
    { "setGroupInfo",
        [](ArgReader &r) -> Args {
            return SetGroupInfo { r.string("groupID"), r.string("groupName"), r.string("faceURL", Optional) };
        },
        true },
    { "addGroupMember",
        [](ArgReader &r) -> Args {
            return AddGroupMember { r.string("groupID"), r.string("userID"), r.string("nameCard", Optional) };
        },
        true },
    { "setNameCard",
        [](ArgReader &r) -> Args {
            return SetNameCard { r.string("groupID"), r.string("userID"), r.string("nameCard") };
        },
        true },
    { "setFriendRemark",
        [](ArgReader &r) -> Args {
            return SetFriendRemark { r.string("viewerID"), r.string("targetID"), r.string("remark") };
        },
        true },
};

const Operation *find(const QString &op)
{
    for (const Operation &operation : kOperations) {
        if (op == QLatin1String(operation.name))
            return &operation;
    }
    return nullptr;
}

} // namespace

Parsed parseArgs(const QString &op, const QJsonObject &args)
{
    const Operation *operation = find(op);
    if (!operation)
        return { std::nullopt, { V2VOR_ERR_PROTOCOL_UNKNOWN_OP, QStringLiteral("no operation \"%1\"").arg(op) } };
    ArgReader reader(args);
    Args parsed = operation->parse(reader);
    if (reader.error())
        return { std::nullopt, reader.error() };
    return { std::move(parsed), {} };
}

bool isDirectoryOp(const QString &op)
{
    const Operation *operation = find(op);
    return operation && operation->directory;
}

QStringList operations()
{
    QStringList names;
    for (const Operation &operation : kOperations)
        names.append(QLatin1String(operation.name));
    return names;
}

} // namespace RequestArgs
