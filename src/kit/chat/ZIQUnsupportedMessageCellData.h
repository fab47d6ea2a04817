// The data of the row shown for a message this client cannot draw: a custom message of a kind
// no plug-in registered, or one whose plug-in could not read it.
#pragma once

#include "kit/chat/ZIQBubbleMessageCellData.h"

class ZIQUnsupportedMessageCellData : public ZIQBubbleMessageCellData
{
    Q_OBJECT

public:
    explicit ZIQUnsupportedMessageCellData(ZIQMessageDirection direction, QObject *parent = nullptr);

    static std::shared_ptr<ZIQUnsupportedMessageCellData> getCellData(const V2VORMessagePtr &message);
    static QString getDisplayString(const V2VORMessagePtr &message);
    static bool canForward() { return false; }

    /// "[Unsupported message]" in the user's language.
    QString content() const;
};
