// The keyboard panel as a phone draws it: a light grey tray with a suggestion bar, four rows
// of keys and, on phones with one, the home-indicator area below. It only looks the part;
// typing goes to the focused field as usual.
#pragma once

#include <QWidget>

namespace platform {

class KeyboardView : public QWidget
{
    Q_OBJECT

public:
    explicit KeyboardView(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void paintRow(QPainter &painter, const QStringList &keys, const QRectF &row, qreal keyWidth) const;
    void paintKey(QPainter &painter, const QRectF &key, const QString &label, bool function) const;
};

} // namespace platform
