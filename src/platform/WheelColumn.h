// One column of a wheel picker: centred rows that the user drags, scrolls with the mouse wheel or
// steps through with the keyboard; the row under the centre line is the selected one. Knows nothing
// of what its rows mean.
#pragma once

#include <QColor>
#include <QFont>
#include <QStringList>
#include <QWidget>

class QPainter;
class QVariantAnimation;

namespace platform {

class WheelColumn : public QWidget
{
    Q_OBJECT

public:
    /// Length of an animated scroll to a row.
    static constexpr int ScrollDurationMs = 250;

    explicit WheelColumn(QWidget *parent = nullptr);

    QStringList rows() const { return m_rows; }
    /// Replaces the rows; the selected row is kept, clamped to the new rows.
    void setRows(const QStringList &rows);
    int currentRow() const { return m_currentRow; }
    /// Selects `row` (clamped) without emitting userSelectedRow().
    void setCurrentRow(int row, bool animated = false);

    int rowHeight() const { return m_rowHeight; }
    void setRowHeight(int height);
    void setTextFont(const QFont &font);
    void setTextColor(const QColor &color);
    /// Font and text colour of the selected row; invalid values fall back to the others.
    void setSelectedTextFont(const QFont &font);
    void setSelectedTextColor(const QColor &color);
    /// The rounded band behind the selected row; invalid draws a faint tint of the text colour.
    void setSelectedRowColor(const QColor &color);
    /// Which ends of the band this column rounds off. Wheels standing side by side share one band:
    /// the first rounds its left end, the last its right end, those between neither.
    void setBandEdges(Qt::Edges edges);
    /// The two lines around the selected row, in points; a height of 0 or less draws hairlines.
    /// Lines are snapped to device pixels and never thinner than one.
    void setSeparator(const QColor &color, qreal height);

    /// `font` made smaller until `text` fits `width`, but never below half its size.
    static QFont fittedFont(const QFont &font, const QString &text, int width);
    /// Where the wheel stands, in rows from the first; fractional while scrolling.
    qreal scrollPosition() const { return m_position; }

Q_SIGNALS:
    /// The user (not the program) chose another row.
    void userSelectedRow(int row);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QRectF selectedRowRect() const;
    void paintBand(QPainter &painter, const QRectF &band) const;
    void paintRows(QPainter &painter) const;
    void paintSeparators(QPainter &painter, const QRectF &band) const;
    int clampRow(int row) const;
    int rowAt(qreal y) const;
    int settledRow() const;
    void scrollTo(int row, bool animated);
    void selectByUser(int row);
    void setScrollPosition(qreal position);

    QStringList m_rows;
    int m_currentRow = 0;
    qreal m_position = 0;
    int m_rowHeight = 35;
    QFont m_font;
    QFont m_selectedFont;
    QColor m_textColor = Qt::black;
    QColor m_selectedTextColor;
    QColor m_selectedRowColor;
    Qt::Edges m_bandEdges = Qt::LeftEdge | Qt::RightEdge;
    QColor m_separatorColor;
    qreal m_separatorHeight = 0;
    QVariantAnimation *m_animation;
    quint64 m_scrollGeneration = 0;
    qreal m_pressY = 0;
    qreal m_pressPosition = 0;
    bool m_pressed = false;
    bool m_dragged = false;
    int m_wheelDelta = 0;
};

} // namespace platform
