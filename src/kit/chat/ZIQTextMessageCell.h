// A text message: the text wraps inside its bubble, measured with the same font it is drawn in.
// The unsupported-message row draws its notice the same way.
#pragma once

#include "kit/chat/ZIQBubbleMessageCell.h"

class ZIQTextMessageCell : public ZIQBubbleMessageCell
{
    Q_OBJECT

public:
    static constexpr int FontSize = 16;
    static constexpr qreal HorizontalInset = 12;
    static constexpr qreal VerticalInset = 10;

    Q_INVOKABLE explicit ZIQTextMessageCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    /// The bubble's content: the text wrapped within the widest bubble, plus the insets.
    static QSizeF getContentSize(ZIQMessageCellData *data);
    /// The text a row of this kind shows for `data`.
    static QString textOf(const ZIQMessageCellData *data);
    static QSizeF sizeOfText(const QString &text);

    QLabel *textLabel() const { return m_textLabel; }

    void fillWithData(const ZIQMessageCellDataPtr &data) override;

protected:
    void layoutMessage() override;
    void applyTheme() override;

private:
    QLabel *m_textLabel;
};
