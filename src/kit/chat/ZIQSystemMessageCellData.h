// The data of a one-line row centred across the chat, without bubble or picture: notices such
// as "Bob joined", and plug-in tips that point back at a message.
#pragma once

#include "kit/chat/ZIQAttributedString.h"
#include "kit/chat/ZIQMessageCellData.h"

class ZIQSystemMessageCellData : public ZIQMessageCellData
{
    Q_OBJECT

public:
    explicit ZIQSystemMessageCellData(ZIQMessageDirection direction, QObject *parent = nullptr);

    /// The line as drawn.
    ZIQAttributedString attributedString() const { return m_attributedString; }
    void setAttributedString(const ZIQAttributedString &text) { m_attributedString = text; }
    /// The line without its formats.
    QString content() const { return m_attributedString.string(); }

private:
    ZIQAttributedString m_attributedString;
};
