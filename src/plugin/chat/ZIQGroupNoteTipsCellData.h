// The data of a tips row: "<member> updated the group note [<title>]" in one line, the member's
// part grey and the bracketed title blue, announcing that entries were added to a note.
#pragma once

#include "kit/chat/ZIQSystemMessageCellData.h"

class ZIQGroupNoteTipsCellData : public ZIQSystemMessageCellData
{
    Q_OBJECT

public:
    using ZIQSystemMessageCellData::ZIQSystemMessageCellData;

    /// The row for a tips message; null when its body is not JSON.
    static std::shared_ptr<ZIQGroupNoteTipsCellData> getCellData(const V2VORMessagePtr &message);
    /// What a conversation's last-message line says for any tips message.
    static QString getDisplayString(const V2VORMessagePtr &message);
    /// The sender's nickname, or their user ID when they have none.
    static QString displayedNameOfInfo(const V2VORMessagePtr &message);

    /// Left empty by getCellData(): the row draws the base's attributedString().
    ZIQAttributedString attrStr() const { return m_attrStr; }
    void setAttrStr(const ZIQAttributedString &attrStr) { m_attrStr = attrStr; }

private:
    ZIQAttributedString m_attrStr;
};
