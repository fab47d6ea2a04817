#include "server/nats/NatsDirectory.h"

#include "sdk/ServiceRules.h"
#include "server/nats/NatsKeyCodec.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QByteArray key(const char *kind, const QString &a)
{
    return QByteArray(kind) + '.' + NatsKeyCodec::encode(a);
}

QByteArray key(const char *kind, const QString &a, const QString &b)
{
    return key(kind, a) + '.' + NatsKeyCodec::encode(b);
}

QJsonObject objectOf(const QByteArray &value)
{
    return QJsonDocument::fromJson(value).object();
}

QByteArray toBytes(const NatsDirectory::Conversation &conversation)
{
    QJsonObject cards;
    for (auto it = conversation.nameCards.cbegin(); it != conversation.nameCards.cend(); ++it)
        cards.insert(it.key(), it.value());
    return QJsonDocument(QJsonObject { { QStringLiteral("isGroup"), conversation.isGroup },
                             { QStringLiteral("members"), QJsonArray::fromStringList(conversation.members) },
                             { QStringLiteral("nameCards"), cards }, { QStringLiteral("name"), conversation.name },
                             { QStringLiteral("faceURL"), conversation.faceURL } })
        .toJson(QJsonDocument::Compact);
}

NatsDirectory::Conversation conversationOf(const QByteArray &value)
{
    const QJsonObject object = objectOf(value);
    NatsDirectory::Conversation conversation;
    conversation.isGroup = object.value(QLatin1String("isGroup")).toBool(true);
    for (const QJsonValue &member : object.value(QLatin1String("members")).toArray())
        conversation.members.append(member.toString());
    const QJsonObject cards = object.value(QLatin1String("nameCards")).toObject();
    for (auto it = cards.constBegin(); it != cards.constEnd(); ++it)
        conversation.nameCards.insert(it.key(), it.value().toString());
    conversation.name = object.value(QLatin1String("name")).toString();
    conversation.faceURL = object.value(QLatin1String("faceURL")).toString();
    return conversation;
}

} // namespace

NatsDirectory::NatsDirectory(NatsStore &store)
    : m_store(store)
{
    m_watch = m_store.watchWrites(
        NatsStore::Directory, "conv", [this](const QByteArray &recordKey, const QByteArray &value) {
            const std::optional<QString> conversationKey
                = NatsKeyCodec::decode(recordKey.mid(recordKey.indexOf('.') + 1));
            if (conversationKey && !value.isEmpty())
                learnMembers(*conversationKey, conversationOf(value).members);
        });
}

NatsDirectory::~NatsDirectory()
{
    m_store.unsubscribe(m_watch);
}

void NatsDirectory::learnMembers(const QString &conversationKey, const QStringList &members)
{
    if (members.isEmpty())
        return;
    QStringList &known = m_knownMembers[conversationKey];
    QStringList added;
    for (const QString &member : members) {
        if (!known.contains(member))
            added.append(member);
    }
    known.append(added);
    if (!added.isEmpty() && m_membersObserver)
        m_membersObserver(conversationKey, added);
}

void NatsDirectory::setMembersObserver(std::function<void(const QString &key, const QStringList &added)> observer)
{
    m_membersObserver = std::move(observer);
}

QStringList NatsDirectory::knownMembers(const QString &conversationKey)
{
    auto known = m_knownMembers.constFind(conversationKey);
    if (known != m_knownMembers.constEnd())
        return *known;
    learnMembers(conversationKey, conversation(conversationKey).value_or(Conversation {}).members);
    return m_knownMembers.value(conversationKey);
}

std::optional<NatsDirectory::User> NatsDirectory::user(const QString &userID) const
{
    const NatsStore::Entry entry = m_store.get(NatsStore::Directory, key("user", userID));
    if (!entry.ok())
        return std::nullopt;
    const QJsonObject object = objectOf(entry.value);
    return User { object.value(QLatin1String("nickName")).toString(),
        object.value(QLatin1String("faceURL")).toString() };
}

void NatsDirectory::putUser(const QString &userID, const User &user)
{
    const QJsonObject object { { QStringLiteral("nickName"), user.nickName },
        { QStringLiteral("faceURL"), user.faceURL } };
    m_store.put(NatsStore::Directory, key("user", userID), QJsonDocument(object).toJson(QJsonDocument::Compact));
}

void NatsDirectory::ensureUser(const QString &userID)
{
    // A concurrent creation of the same user is as good as ours.
    if (!user(userID))
        m_store.update(NatsStore::Directory, key("user", userID), QByteArrayLiteral("{}"), 0);
}

std::optional<NatsDirectory::Conversation> NatsDirectory::conversation(const QString &conversationKey) const
{
    const NatsStore::Entry entry = m_store.get(NatsStore::Directory, key("conv", conversationKey));
    if (!entry.ok())
        return std::nullopt;
    return conversationOf(entry.value);
}

bool NatsDirectory::changeConversation(
    const QString &conversationKey, const std::function<void(Conversation &)> &change)
{
    const QByteArray recordKey = key("conv", conversationKey);
    for (;;) {
        const NatsStore::Entry entry = m_store.get(NatsStore::Directory, recordKey);
        Conversation conversation = entry.ok() ? conversationOf(entry.value) : Conversation {};
        change(conversation);
        if (m_store.update(NatsStore::Directory, recordKey, toBytes(conversation), entry.revision).ok()) {
            learnMembers(conversationKey, conversation.members);
            return !entry.ok();
        }
    }
}

bool NatsDirectory::isMember(const QString &conversationKey, const QString &userID)
{
    if (m_knownMembers.value(conversationKey).contains(userID))
        return true;
    // Perhaps added on another server a moment ago.
    learnMembers(conversationKey, conversation(conversationKey).value_or(Conversation {}).members);
    return m_knownMembers.value(conversationKey).contains(userID);
}

QStringList NatsDirectory::members(const QString &conversationKey)
{
    return knownMembers(conversationKey);
}

CallError NatsDirectory::checkGroupMember(const QString &userID, const QString &groupID)
{
    if (!groupID.isEmpty() && isMember(groupID, userID) && !groupID.startsWith(QLatin1String("c2c:")))
        return {};
    const std::optional<Conversation> group = groupID.isEmpty() ? std::nullopt : conversation(groupID);
    if (!group || !group->isGroup)
        return ServiceRules::groupNotFound(groupID);
    return ServiceRules::notGroupMember(userID, groupID);
}

QStringList NatsDirectory::conversationsOf(const QString &userID) const
{
    QStringList keys;
    for (const NatsStore::Entry &entry : m_store.list(NatsStore::Directory, key("mine", userID))) {
        if (auto decoded = NatsKeyCodec::decode(entry.key.mid(entry.key.lastIndexOf('.') + 1)))
            keys.append(*decoded);
    }
    return keys;
}

void NatsDirectory::addMember(const QString &conversationKey, const QString &userID, const QString &nameCard)
{
    changeConversation(conversationKey, [&](Conversation &conversation) {
        if (!conversation.members.contains(userID))
            conversation.members.append(userID);
        if (!nameCard.isEmpty())
            conversation.nameCards.insert(userID, nameCard);
    });
    m_store.put(NatsStore::Directory, key("mine", userID, conversationKey), {});
    ensureUser(userID);
}

QString NatsDirectory::remark(const QString &viewerID, const QString &targetID) const
{
    return QString::fromUtf8(m_store.get(NatsStore::Directory, key("remark", viewerID, targetID)).value);
}

void NatsDirectory::setRemark(const QString &viewerID, const QString &targetID, const QString &remark)
{
    m_store.put(NatsStore::Directory, key("remark", viewerID, targetID), remark.toUtf8());
}

quint64 NatsDirectory::readSeq(const QString &conversationKey, const QString &userID) const
{
    return m_store.get(NatsStore::Directory, key("read", conversationKey, userID)).value.toULongLong();
}

void NatsDirectory::setReadSeq(const QString &conversationKey, const QString &userID, quint64 seq)
{
    m_store.put(NatsStore::Directory, key("read", conversationKey, userID), QByteArray::number(seq));
}

quint64 NatsDirectory::orderKey(const QString &conversationKey) const
{
    return m_store.get(NatsStore::Directory, key("order", conversationKey)).revision;
}

void NatsDirectory::touch(const QString &conversationKey)
{
    m_store.put(NatsStore::Directory, key("order", conversationKey), {});
}
