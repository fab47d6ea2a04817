// The thin rule under each row of the note's settings page: inset from both sides of the row
// and standing on its last point, in the theme's border colour.
#pragma once

#include <QColor>
#include <QWidget>

class ZIQGroupNoteBottomLine : public QWidget
{
    Q_OBJECT

public:
    static constexpr int Inset = 16;
    static constexpr int Top = 49;

    /// Draws itself over `row` (a cell's content view) and follows its width.
    explicit ZIQGroupNoteBottomLine(QWidget *row);

    QColor color() const { return m_color; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void place();

    QColor m_color;
};
