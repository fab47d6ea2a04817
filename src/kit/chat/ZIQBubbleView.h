// The speech bubble behind a message: a rounded rectangle whose top corner on the sender's side
// is nearly square, pointing at the sender's picture.
#pragma once

#include <QColor>
#include <QWidget>

class ZIQBubbleView : public QWidget
{
    Q_OBJECT

public:
    static constexpr qreal CornerRadius = 16;
    static constexpr qreal SenderCornerRadius = 4;

    explicit ZIQBubbleView(QWidget *parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor &color);
    /// Outgoing bubbles point right, at the user's own picture.
    bool isOutgoing() const { return m_outgoing; }
    void setOutgoing(bool outgoing);

    static QPainterPath bubblePath(const QRectF &rect, bool outgoing);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_color;
    bool m_outgoing = false;
};
