// One change of a conversation as every server hears it: the stored message, the written or
// deleted extensions with their versions, or the note that the conversation moved. It says
// nothing of who looks at it; each server makes each of its own members' copies from it.
//
// On the wire: {"ev": name, "conv": conversation, "data": protocol JSON}.
#pragma once

#include "sdk/V2VORMessage.h"
#include "sdk/V2VORMessageExtension.h"

#include <QHash>
#include <QJsonObject>
#include <QStringList>
#include <optional>

struct NatsChange
{
    enum Kind { NewMessage, Modified, ExtensionsChanged, ExtensionsDeleted, ConversationChanged };

    Kind kind = ConversationChanged;
    QString conversation;
    /// The message as stored (NewMessage, Modified).
    V2VORMessagePtr message;
    QString msgID;
    QList<V2VORMessageExtension> extensions;
    /// The deleted keys (ExtensionsDeleted).
    QStringList keys;
    QHash<QString, quint64> versions;
    /// Where each written key's life began, for the other servers' first-writer order.
    QHash<QString, quint64> firstWritten;

    QJsonObject toJson() const;
    static std::optional<NatsChange> fromJson(const QJsonObject &object);

    /// The copy of a stored message `viewer` gets in a conversation of `members`.
    static V2VORMessagePtr messageFor(const V2VORMessage &stored, const QStringList &members, const QString &viewer);
};
