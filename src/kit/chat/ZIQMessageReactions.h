// Emoji reactions to one message. Each member's reaction is one extension of the message under
// a key of its own, "reaction_<userID>" -> emoji, so members never write over each other and a
// member changing their mind rewrites only their key. Aggregated per emoji, with the members
// who gave it, emojis and members both in the order the reactions were first given.
//
// Reactions share the message's extension budget with whatever else lives there; a user ID
// longer than the key limit allows cannot react.
#pragma once

#include "sdk/V2VORMessageExtension.h"

#include <QList>
#include <QString>
#include <QStringList>

class ZIQMessageReactions
{
public:
    struct Reaction
    {
        QString emoji;
        QStringList userIDs;

        friend bool operator==(const Reaction &, const Reaction &) = default;
    };

    static inline const QString keyPrefix = QStringLiteral("reaction_");
    static QString keyOf(const QString &userID);
    /// The member a key belongs to; empty for keys that are not reactions.
    static QString userOf(const QString &key);

    /// From a message's whole extension list, in the order the service lists the keys.
    static ZIQMessageReactions fromExtensions(const QList<V2VORMessageExtension> &extensions);

    /// Applies changed extensions; says whether any reaction changed. Other keys are ignored.
    bool apply(const QList<V2VORMessageExtension> &changed);
    /// Applies deleted keys; says whether any reaction went.
    bool remove(const QStringList &deletedKeys);

    /// Per emoji, in first-reaction order.
    QList<Reaction> reactions() const;
    /// The emoji `userID` reacted with; empty for none.
    QString emojiOf(const QString &userID) const;
    bool isEmpty() const { return m_userIDs.isEmpty(); }

    friend bool operator==(const ZIQMessageReactions &, const ZIQMessageReactions &) = default;

private:
    /// Members in the order they first reacted, with their current emoji.
    QStringList m_userIDs;
    QStringList m_emojis;
};
