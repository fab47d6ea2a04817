#include "server/nats/NatsChange.h"

#include "sdk/ServiceProtocol.h"
#include "sdk/ServiceRules.h"

#include <QJsonArray>
#include <algorithm>
#include <array>

namespace {

constexpr std::array<QLatin1StringView, 5> kNames { QLatin1StringView("newMessage"), QLatin1StringView("modified"),
    QLatin1StringView("extensionsChanged"), QLatin1StringView("extensionsDeleted"),
    QLatin1StringView("conversationChanged") };

} // namespace

QJsonObject NatsChange::toJson() const
{
    namespace P = ServiceProtocol;
    QJsonObject data;
    if (message)
        data.insert(QStringLiteral("message"), P::toJson(*message));
    if (kind == ExtensionsChanged || kind == ExtensionsDeleted) {
        data.insert(QStringLiteral("msgID"), msgID);
        data.insert(QStringLiteral("versions"), P::toJson(versions));
    }
    if (kind == ExtensionsChanged) {
        data.insert(QStringLiteral("extensions"), P::toJson(extensions));
        data.insert(QStringLiteral("firstWritten"), P::toJson(firstWritten));
    }
    if (kind == ExtensionsDeleted)
        data.insert(QStringLiteral("keys"), QJsonArray::fromStringList(keys));
    return { { QStringLiteral("ev"), QString(kNames[kind]) }, { QStringLiteral("conv"), conversation },
        { QStringLiteral("data"), data } };
}

std::optional<NatsChange> NatsChange::fromJson(const QJsonObject &object)
{
    namespace P = ServiceProtocol;
    const auto name = std::find(kNames.begin(), kNames.end(), object.value(QLatin1String("ev")).toString());
    if (name == kNames.end())
        return std::nullopt;
    NatsChange change;
    change.kind = Kind(name - kNames.begin());
    change.conversation = object.value(QLatin1String("conv")).toString();
    const QJsonObject data = object.value(QLatin1String("data")).toObject();
    change.message = P::messageFromJson(data.value(QLatin1String("message")));
    change.msgID = data.value(QLatin1String("msgID")).toString();
    change.extensions = P::extensionsFromJson(data.value(QLatin1String("extensions"))).value_or(change.extensions);
    change.keys = P::stringsFromJson(data.value(QLatin1String("keys"))).value_or(QStringList {});
    change.versions = P::versionsFromJson(data.value(QLatin1String("versions"))).value_or(change.versions);
    change.firstWritten = P::versionsFromJson(data.value(QLatin1String("firstWritten"))).value_or(change.firstWritten);
    const bool aboutMessage = change.kind == NewMessage || change.kind == Modified;
    if (change.conversation.isEmpty() || (aboutMessage && !change.message))
        return std::nullopt;
    return change;
}

V2VORMessagePtr NatsChange::messageFor(const V2VORMessage &stored, const QStringList &members, const QString &viewer)
{
    V2VORMessagePtr copy = stored.clone();
    copy->setIsSelf(copy->sender() == viewer);
    if (copy->groupID().isEmpty())
        copy->setUserID(ServiceRules::peerOf(members, viewer));
    return copy;
}
