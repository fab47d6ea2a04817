// A row of a chat's message list: it draws one cell data, which the chat measured through the
// cell's class before handing it over. Every message cell, the kit's and those of plug-ins,
// derives from this; the chat builds cells by class name, so subclasses carry Q_OBJECT and an
// invokable constructor taking the reuse identifier.
#pragma once

#include "kit/chat/ZIQMessageCellData.h"
#include "platform/TableViewCell.h"

#include <QSizeF>

namespace platform {
class ViewController;
}

class ZIQMessageCell : public platform::TableViewCell
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit ZIQMessageCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    /// The row's data, as last filled.
    ZIQMessageCellDataPtr messageData() const { return m_messageData; }
    /// Shows `data`. Filling the same data again draws the same row, so a cell may be refilled
    /// whenever its data changed.
    virtual void fillWithData(const ZIQMessageCellDataPtr &data);

    /// The content size the chat measured for the row through the cell's class, set before
    /// each fill.
    QSizeF contentSize() const { return m_contentSize; }
    void setContentSize(const QSizeF &size) { m_contentSize = size; }

    /// Who is looking at the chat: their own reactions are highlighted. Set by the chat.
    QString currentUserID() const { return m_currentUserID; }
    void setCurrentUserID(const QString &userID) { m_currentUserID = userID; }

    /// The view controller whose view holds this cell (the chat screen).
    platform::ViewController *mm_viewController() const;

Q_SIGNALS:
    /// The user asked for the emoji bar over this message (long press or right click).
    void reactionMenuRequested(const QString &msgID, const QRect &anchorInWindow);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    /// Where the emoji bar points at, in this cell's coordinates; the whole row by default.
    virtual QRect reactionAnchor() const { return rect(); }
    /// Theme colours; concrete cells bind it to theme changes.
    virtual void applyTheme() { }

private:
    void requestReactionMenu();

    ZIQMessageCellDataPtr m_messageData;
    QSizeF m_contentSize;
    QString m_currentUserID;
    quint64 m_pressGeneration = 0;
};
