#include "kit/chat/ZIQMessageReactions.h"

QString ZIQMessageReactions::keyOf(const QString &userID)
{
    return keyPrefix + userID;
}

QString ZIQMessageReactions::userOf(const QString &key)
{
    return key.startsWith(keyPrefix) ? key.mid(keyPrefix.size()) : QString();
}

ZIQMessageReactions ZIQMessageReactions::fromExtensions(const QList<V2VORMessageExtension> &extensions)
{
    ZIQMessageReactions reactions;
    reactions.apply(extensions);
    return reactions;
}

bool ZIQMessageReactions::apply(const QList<V2VORMessageExtension> &changed)
{
    bool any = false;
    for (const V2VORMessageExtension &extension : changed) {
        const QString userID = userOf(extension.extensionKey);
        if (userID.isEmpty())
            continue;
        if (extension.extensionValue.isEmpty()) {
            any |= remove({ extension.extensionKey });
            continue;
        }
        const qsizetype index = m_userIDs.indexOf(userID);
        if (index < 0) {
            m_userIDs.append(userID);
            m_emojis.append(extension.extensionValue);
            any = true;
        } else if (m_emojis.at(index) != extension.extensionValue) {
            m_emojis[index] = extension.extensionValue;
            any = true;
        }
    }
    return any;
}

bool ZIQMessageReactions::remove(const QStringList &deletedKeys)
{
    bool any = false;
    for (const QString &key : deletedKeys) {
        const qsizetype index = m_userIDs.indexOf(userOf(key));
        if (userOf(key).isEmpty() || index < 0)
            continue;
        m_userIDs.removeAt(index);
        m_emojis.removeAt(index);
        any = true;
    }
    return any;
}

QList<ZIQMessageReactions::Reaction> ZIQMessageReactions::reactions() const
{
    QList<Reaction> grouped;
    for (qsizetype i = 0; i < m_userIDs.size(); ++i) {
        auto reaction = std::find_if(
            grouped.begin(), grouped.end(), [&](const Reaction &r) { return r.emoji == m_emojis.at(i); });
        if (reaction == grouped.end())
            grouped.append({ m_emojis.at(i), { m_userIDs.at(i) } });
        else
            reaction->userIDs.append(m_userIDs.at(i));
    }
    return grouped;
}

QString ZIQMessageReactions::emojiOf(const QString &userID) const
{
    const qsizetype index = m_userIDs.indexOf(userID);
    return index < 0 ? QString() : m_emojis.at(index);
}
