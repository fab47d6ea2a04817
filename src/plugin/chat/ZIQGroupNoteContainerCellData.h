// The chat row of one note message: the message, its measured card size, and whether its card
// shows every entry. The chat keeps one of these per message, so a card scrolled away and back
// keeps its expansion.
#pragma once

#include "kit/chat/ZIQBubbleMessageCellData.h"

#include <QSizeF>
#include <QString>
#include <memory>

class ZIQGroupNoteContainerCellData;
using ZIQGroupNoteContainerCellDataPtr = std::shared_ptr<ZIQGroupNoteContainerCellData>;

class ZIQGroupNoteContainerCellData : public ZIQBubbleMessageCellData
{
    Q_OBJECT

public:
    explicit ZIQGroupNoteContainerCellData(ZIQMessageDirection direction, QObject *parent = nullptr);

    /// The row of a note message: outgoing for the current user's own; null without a message.
    static ZIQGroupNoteContainerCellDataPtr getCellData(const V2VORMessagePtr &message);
    /// The conversation list's line for a note message; empty for anything else.
    static QString getDisplayString(const V2VORMessagePtr &message);
    /// The "businessID" of the message's JSON body; empty when the body is not JSON or lacks it.
    static QString parseBusinessID(const V2VORMessagePtr &message);
    /// Notes are not forwarded: their entries live in this message's extensions.
    static bool canForward() { return false; }

    /// Set when the row is measured; a row never measured does not refresh its card.
    QString businessID() const { return m_businessID; }
    void setBusinessID(const QString &businessID) { m_businessID = businessID; }
    V2VORMessagePtr message() const { return m_message; }
    void setMessage(const V2VORMessagePtr &message) { m_message = message; }
    /// The card's size as last measured.
    QSizeF customViewSize() const { return m_customViewSize; }
    void setCustomViewSize(const QSizeF &size) { m_customViewSize = size; }
    /// The card shows every entry; once set, it stays set for this message.
    bool isExpandAll() const { return m_isExpandAll; }
    void setIsExpandAll(bool expandAll) { m_isExpandAll = expandAll; }
    /// The expanded card's row count; meaningful only while isExpandAll().
    qint64 allItemsCount() const { return m_allItemsCount; }
    void setAllItemsCount(qint64 count) { m_allItemsCount = count; }

private:
    QString m_businessID;
    V2VORMessagePtr m_message;
    QSizeF m_customViewSize;
    bool m_isExpandAll = false;
    qint64 m_allItemsCount = 0;
};
