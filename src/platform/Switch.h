// A phone's on/off switch: a rounded track that fills with its tint when on and a white knob
// that slides across it. The knob moves on the main queue's clock, so tests run the slide to the
// end; only the user's flips (a tap, or Space for keyboard users) are reported.
#pragma once

#include <QColor>
#include <QWidget>

namespace platform {

class Switch : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool on READ isOn WRITE setOn)
    Q_PROPERTY(qreal knobPosition READ knobPosition WRITE setKnobPosition)

public:
    /// The switch's fixed size in points.
    static constexpr QSize Size { 51, 31 };
    /// Length of the knob's slide.
    static constexpr int AnimationDurationMs = 250;

    explicit Switch(QWidget *parent = nullptr);

    bool isOn() const { return m_on; }
    /// Sets the state without reporting it; `animated` slides the knob, else it jumps.
    void setOn(bool on, bool animated = false);
    /// Flips the switch as the user does: the knob slides and toggled() reports the new state.
    void toggle();

    /// The track's colour when on.
    QColor onTintColor() const { return m_onTintColor; }
    void setOnTintColor(const QColor &color);
    /// The track's colour when off.
    QColor offTintColor() const { return m_offTintColor; }
    void setOffTintColor(const QColor &color);
    QColor thumbTintColor() const { return m_thumbTintColor; }
    void setThumbTintColor(const QColor &color);

    /// Where the knob stands: 0 at the off end, 1 at the on end. The track's colour follows it.
    qreal knobPosition() const { return m_knobPosition; }
    void setKnobPosition(qreal position);

    QSize sizeHint() const override { return Size; }

Q_SIGNALS:
    /// The user flipped the switch; `on` is the new state. Not emitted by setOn().
    void toggled(bool on);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void moveKnob(bool animated);

    bool m_on = false;
    bool m_pressed = false;
    qreal m_knobPosition = 0;
    QColor m_onTintColor;
    QColor m_offTintColor;
    QColor m_thumbTintColor;
};

} // namespace platform
