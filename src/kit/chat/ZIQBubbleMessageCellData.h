// The data of a row drawn as a bubble beside the sender's picture: the kit's text messages
// and most plug-in messages.
#pragma once

#include "kit/chat/ZIQMessageCellData.h"

#include <QSizeF>

class ZIQBubbleMessageCellData : public ZIQMessageCellData
{
    Q_OBJECT

public:
    explicit ZIQBubbleMessageCellData(ZIQMessageDirection direction, QObject *parent = nullptr);

    /// Extra room the chat adds to the bubble's container around the cell's own content (the
    /// reaction strip under it, for instance).
    QSizeF messageContainerAppendSize() const { return m_messageContainerAppendSize; }
    void setMessageContainerAppendSize(const QSizeF &size) { m_messageContainerAppendSize = size; }

private:
    QSizeF m_messageContainerAppendSize;
};
