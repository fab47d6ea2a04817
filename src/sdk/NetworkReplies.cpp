#include "sdk/NetworkReplies.h"

using namespace ServiceProtocol;

namespace NetworkReplies {

namespace {

void acceptOwnConflicts(QList<V2VORMessageExtensionResult> &results, const QList<V2VORMessageExtension> &written)
{
    for (V2VORMessageExtensionResult &result : results) {
        if (result.resultCode != V2VOR_ERR_EXTENSION_VERSION_CONFLICT)
            continue;
        for (const V2VORMessageExtension &mine : written) {
            if (mine.extensionKey == result.extension.extensionKey
                && mine.extensionValue == result.extension.extensionValue) {
                result.resultCode = V2VOR_SUCC;
                result.resultInfo.clear();
            }
        }
    }
}

} // namespace

CallError unreadable(const QString &op)
{
    return { V2VOR_ERR_PROTOCOL_MALFORMED, QStringLiteral("unreadable reply to %1").arg(op) };
}

QJsonValue member(const QJsonObject &object, const char *name)
{
    return object.value(QLatin1String(name));
}

std::optional<V2VORMessagePtr> messageIn(const QJsonObject &result)
{
    V2VORMessagePtr message = messageFromJson(member(result, "message"));
    return message ? std::optional(message) : std::nullopt;
}

std::optional<QList<V2VORMessagePtr>> messagesIn(const QJsonObject &result)
{
    return messagesFromJson(member(result, "messages"));
}

std::optional<QString> stringIn(const QJsonObject &result, const char *name)
{
    const QJsonValue value = member(result, name);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QList<V2VORConversation>> conversationsIn(const QJsonObject &result)
{
    const QJsonValue list = member(result, "conversations");
    if (!list.isArray())
        return std::nullopt;
    QList<V2VORConversation> conversations;
    for (const QJsonValue &item : list.toArray()) {
        std::optional<V2VORConversation> conversation = conversationFromJson(item);
        if (!conversation)
            return std::nullopt;
        conversations.append(*conversation);
    }
    return conversations;
}

ExtensionReply readExtensionReply(
    const QString &op, const QString &msgID, const ServerFrame &frame, const QList<V2VORMessageExtension> &resent)
{
    ExtensionReply answer { frame.error, msgID, {}, {}, {} };
    if (frame.error)
        return answer;
    const bool isRead = op == QLatin1String("getExtensions");
    const auto extensions
        = isRead ? extensionsFromJson(member(frame.result, "extensions")) : QList<V2VORMessageExtension>();
    const auto results
        = isRead ? QList<V2VORMessageExtensionResult>() : resultsFromJson(member(frame.result, "results"));
    const auto versions = versionsFromJson(member(frame.result, "versions"));
    if (!extensions || !results || !versions) {
        answer.error = unreadable(op);
        return answer;
    }
    answer.extensions = *extensions;
    answer.results = *results;
    answer.versions = *versions;
    acceptOwnConflicts(answer.results, resent);
    return answer;
}

QJsonObject pushInfoJson(const V2VOROfflinePushInfo &info)
{
    return { { QStringLiteral("title"), info.title }, { QStringLiteral("desc"), info.desc },
        { QStringLiteral("ext"), info.ext }, { QStringLiteral("disablePush"), info.disablePush },
        { QStringLiteral("AndroidOPPOChannelID"), info.AndroidOPPOChannelID },
        { QStringLiteral("AndroidSound"), info.AndroidSound },
        { QStringLiteral("AndroidHuaWeiCategory"), info.AndroidHuaWeiCategory },
        { QStringLiteral("AndroidVIVOCategory"), info.AndroidVIVOCategory } };
}

QJsonObject pageArgs(const char *who, const QString &id, int count, quint64 beforeSeq)
{
    return { { QLatin1String(who), id }, { QStringLiteral("count"), count },
        { QStringLiteral("beforeSeq"), double(beforeSeq) } };
}

} // namespace NetworkReplies
