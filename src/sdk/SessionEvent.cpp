#include "sdk/SessionEvent.h"

using namespace ServiceProtocol;

namespace {

QJsonValue member(const QJsonObject &object, const char *name)
{
    return object.value(QLatin1String(name));
}

SessionEvent readMessageEvent(const QJsonObject &data, bool isNew)
{
    const V2VORMessagePtr copy = messageFromJson(member(data, "message"));
    if (!copy)
        return {};
    return [isNew, copy](MessagingSession *session) {
        isNew ? session->receiveNewMessage(copy) : session->receiveModified(copy);
    };
}

SessionEvent readExtensionEvent(const QJsonObject &data, bool changed)
{
    const QJsonValue msgID = member(data, "msgID");
    const auto versions = versionsFromJson(member(data, "versions"));
    if (!msgID.isString() || msgID.toString().isEmpty() || !versions)
        return {};
    const QString id = msgID.toString();
    if (changed) {
        const auto extensions = extensionsFromJson(member(data, "extensions"));
        if (!extensions)
            return {};
        return [=](MessagingSession *session) { session->receiveExtensionsChanged(id, *extensions, *versions); };
    }
    const auto keys = stringsFromJson(member(data, "keys"));
    if (!keys)
        return {};
    return [=](MessagingSession *session) { session->receiveExtensionsDeleted(id, *keys, *versions); };
}

} // namespace

SessionEvent readSessionEvent(const ServerFrame &event)
{
    const QJsonObject &data = event.data;
    if (event.event == QLatin1String("newMessage") || event.event == QLatin1String("messageModified"))
        return readMessageEvent(data, event.event == QLatin1String("newMessage"));
    if (event.event == QLatin1String("extensionsChanged") || event.event == QLatin1String("extensionsDeleted"))
        return readExtensionEvent(data, event.event == QLatin1String("extensionsChanged"));
    if (event.event == QLatin1String("conversationChanged")) {
        if (const auto conversation = conversationFromJson(member(data, "conversation")))
            return [=](MessagingSession *session) { session->receiveConversationChanged(*conversation); };
    }
    return {};
}
