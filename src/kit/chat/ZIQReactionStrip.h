// The reactions under a message: one chip per emoji with how many members gave it, the user's
// own highlighted. Chips flow left to right and wrap; tapping one toggles the user's reaction.
#pragma once

#include "kit/chat/ZIQMessageReactions.h"

#include <QList>
#include <QRectF>
#include <QWidget>

class ZIQReactionStrip : public QWidget
{
    Q_OBJECT

public:
    static constexpr qreal ChipHeight = 24;
    static constexpr qreal Spacing = 4;

    explicit ZIQReactionStrip(QWidget *parent = nullptr);

    /// The room the chips of `reactions` take within `maxWidth`; empty without reactions.
    static QSizeF sizeFor(const ZIQMessageReactions &reactions, qreal maxWidth);

    void setReactions(const ZIQMessageReactions &reactions, const QString &currentUserID, qreal maxWidth);
    QList<ZIQMessageReactions::Reaction> reactions() const { return m_reactions; }
    /// Where chip `index` stands, in the strip's coordinates.
    QRectF chipRect(int index) const { return m_chipRects.value(index); }
    /// The text of chip `index`: the emoji and its count.
    static QString chipText(const ZIQMessageReactions::Reaction &reaction);

Q_SIGNALS:
    void chipClicked(const QString &emoji);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    static QList<QRectF> layoutChips(const QList<ZIQMessageReactions::Reaction> &reactions, qreal maxWidth);

    QList<ZIQMessageReactions::Reaction> m_reactions;
    QList<QRectF> m_chipRects;
    QString m_currentUserID;
};
