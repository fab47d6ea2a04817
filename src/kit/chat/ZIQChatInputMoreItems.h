// The items of a chat input bar's "more" panel, gathered from every module that offers some.
// Asked in every chat; a one-to-one chat asks with an empty group ID and the providers decide.
#pragma once

#include "kit/core/ZIQExtensionInfo.h"

#include <QList>
#include <QPointer>
#include <QString>

struct ZIQChatInputMoreItemQuery
{
    /// The chat's group; empty in a one-to-one chat.
    QString groupID;
    /// The minimalist chat style asks its own extension point.
    bool isMinimalist = false;
    /// The host asks the group-note item to stay away.
    bool filterGroupNote = false;
    /// The chat screen, handed to an item's tap.
    QPointer<QObject> chatScreen;
    /// The navigation controller a tapped item pushes its screen onto.
    QPointer<QObject> navigationController;
};

class ZIQChatInputMoreItems
{
public:
    /// Every offered item, heaviest first.
    static QList<ZIQExtensionInfo> getItems(const ZIQChatInputMoreItemQuery &query);
    /// The extension point the query asks.
    static QString extensionID(const ZIQChatInputMoreItemQuery &query);
    /// The parameters the providers receive.
    static QVariantMap parameters(const ZIQChatInputMoreItemQuery &query);
};
