// The data of a plain text message, the kit's own bubble row.
#pragma once

#include "kit/chat/ZIQBubbleMessageCellData.h"

class ZIQTextMessageCellData : public ZIQBubbleMessageCellData
{
    Q_OBJECT

public:
    explicit ZIQTextMessageCellData(ZIQMessageDirection direction, QObject *parent = nullptr);

    static std::shared_ptr<ZIQTextMessageCellData> getCellData(const V2VORMessagePtr &message);
    /// The text itself, as a conversation's last message shows it.
    static QString getDisplayString(const V2VORMessagePtr &message);
    static bool canForward() { return true; }

    /// The inner message's text, so that an edited message shows its new text.
    QString content() const;
};
