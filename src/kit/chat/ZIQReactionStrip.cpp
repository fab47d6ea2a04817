#include "kit/chat/ZIQReactionStrip.h"

#include "kit/chat/ZIQChatColors.h"
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace {
constexpr qreal ChipPadding = 8;
constexpr int ChipFontSize = 13;
} // namespace

ZIQReactionStrip::ZIQReactionStrip(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("reactionStrip"));
    ZIQTheme::bind(this, [this] { update(); });
}

QString ZIQReactionStrip::chipText(const ZIQMessageReactions::Reaction &reaction)
{
    return reaction.emoji + QLatin1Char(' ') + QString::number(reaction.userIDs.size());
}

QList<QRectF> ZIQReactionStrip::layoutChips(const QList<ZIQMessageReactions::Reaction> &reactions, qreal maxWidth)
{
    const QFont font = platform::SystemFont::regular(ChipFontSize);
    QList<QRectF> rects;
    qreal x = 0;
    qreal y = 0;
    for (const ZIQMessageReactions::Reaction &reaction : reactions) {
        const qreal width = std::ceil(platform::TextMeasure::singleLineSize(chipText(reaction), font).width())
            + 2 * ChipPadding;
        if (x > 0 && x + width > maxWidth) {
            x = 0;
            y += ChipHeight + Spacing;
        }
        rects.append(QRectF(x, y, width, ChipHeight));
        x += width + Spacing;
    }
    return rects;
}

QSizeF ZIQReactionStrip::sizeFor(const ZIQMessageReactions &reactions, qreal maxWidth)
{
    QSizeF size;
    for (const QRectF &rect : layoutChips(reactions.reactions(), maxWidth))
        size = size.expandedTo(QSizeF(rect.right(), rect.bottom()));
    return size;
}

void ZIQReactionStrip::setReactions(
    const ZIQMessageReactions &reactions, const QString &currentUserID, qreal maxWidth)
{
    m_reactions = reactions.reactions();
    m_currentUserID = currentUserID;
    m_chipRects = layoutChips(m_reactions, maxWidth);
    update();
}

void ZIQReactionStrip::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(platform::SystemFont::regular(ChipFontSize));
    for (int i = 0; i < m_reactions.size(); ++i) {
        const bool mine = m_reactions[i].userIDs.contains(m_currentUserID);
        QPainterPath chip;
        chip.addRoundedRect(m_chipRects[i], ChipHeight / 2, ChipHeight / 2);
        painter.fillPath(chip, mine ? ZIQChatColors::ownReactionChip() : ZIQChatColors::reactionChip());
        if (mine) {
            painter.setPen(QPen(ZIQChatColors::primary(), 1));
            painter.drawPath(chip);
        }
        painter.setPen(ZIQChatColors::text());
        painter.drawText(m_chipRects[i], Qt::AlignCenter, chipText(m_reactions[i]));
    }
}

void ZIQReactionStrip::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void ZIQReactionStrip::mouseReleaseEvent(QMouseEvent *event)
{
    for (int i = 0; i < m_chipRects.size(); ++i) {
        if (m_chipRects[i].contains(event->position())) {
            Q_EMIT chipClicked(m_reactions[i].emoji);
            return;
        }
    }
}
