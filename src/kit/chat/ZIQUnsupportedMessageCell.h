// The row of a message this client cannot draw: its notice in a bubble, in the secondary colour.
#pragma once

#include "kit/chat/ZIQTextMessageCell.h"

class ZIQUnsupportedMessageCell : public ZIQTextMessageCell
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit ZIQUnsupportedMessageCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr)
        : ZIQTextMessageCell(reuseIdentifier, parent)
    {
    }
};
