// Animations of a property (a widget's frame, an opacity, any qreal, rectangle, point or size)
// that step on the main queue's clock, so that a test driving a ManualClock can run them to the
// end, and a program sees them at about sixty frames a second.
#pragma once

#include <QByteArray>
#include <QEasingCurve>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QVariant>

#include <functional>

class QWidget;

namespace platform {

class FrameAnimation : public QObject
{
    Q_OBJECT

public:
    enum class Curve { Linear, EaseIn, EaseOut, EaseInOut };

    /// When and how the value moves: after `delayMs`, over `durationMs`, along `curve`.
    struct Timing
    {
        int durationMs = 250;
        int delayMs = 0;
        Curve curve = Curve::EaseOut;
    };

    /// Called once when the animation ends: `finished` is false when it was stopped early
    /// (by stop() or by a newer animation of the same property).
    using Completion = std::function<void(bool finished)>;

    /// Time between two steps of a running animation.
    static constexpr int FrameIntervalMs = 16;

    /// An animation of `propertyName` of `target`, owned by the target. Supported value types:
    /// double, QRect, QRectF, QPoint, QPointF, QSize, QSizeF.
    FrameAnimation(QObject *target, const QByteArray &propertyName);
    ~FrameAnimation() override;

    /// Animates `widget`'s geometry (its frame in its parent) from where it is to `frame`.
    /// The animation deletes itself when it ends.
    static FrameAnimation *animateFrame(QWidget *widget, const QRect &frame, Timing timing, Completion completion = {});
    /// Fades `widget` to `opacity` (0 to 1) through an opacity effect; deletes itself when it ends.
    static FrameAnimation *animateOpacity(QWidget *widget, qreal opacity, Timing timing, Completion completion = {});
    /// The opacity `widget` is drawn with: 1 unless an opacity effect says otherwise.
    static qreal opacityOf(const QWidget *widget);

    QObject *target() const { return m_target; }
    QByteArray propertyName() const { return m_propertyName; }

    /// Where the animation starts; unset, the property's value when the motion begins (after
    /// the delay).
    void setStartValue(const QVariant &value) { m_startValue = value; }
    void setEndValue(const QVariant &value) { m_endValue = value; }
    QVariant endValue() const { return m_endValue; }
    void setTiming(Timing timing) { m_timing = timing; }
    Timing timing() const { return m_timing; }
    void setCompletion(Completion completion) { m_completion = std::move(completion); }
    /// Deletes the animation (later) once it has ended.
    void setDeleteWhenDone(bool deleteWhenDone) { m_deleteWhenDone = deleteWhenDone; }

    /// Starts the animation; a running animation of the same target property is stopped first.
    /// With no duration and no delay the end value is applied and the completion runs at once.
    void start();
    /// Leaves the property where it is and reports an unfinished end.
    void stop();
    /// Jumps to the end value and reports a finished end.
    void finish();
    bool isRunning() const { return m_running; }

    /// Progress along the curve (0 to 1) for a fraction (0 to 1) of the duration.
    static qreal eased(Curve curve, qreal fraction);
    /// The value a fraction `progress` of the way from `from` to `to`, in the type of `from`.
    static QVariant interpolated(const QVariant &from, const QVariant &to, qreal progress);

private:
    /// A new animation of `target` that runs once, then deletes itself.
    static FrameAnimation *startOnce(QObject *target, const QByteArray &propertyName, const QVariant &endValue,
        Timing timing, Completion completion);
    void scheduleStep(int delayMs);
    void step();
    qreal fractionNow() const;
    QVariant valueNow() const;
    void end(bool finished);

    QPointer<QObject> m_target;
    QByteArray m_propertyName;
    QVariant m_startValue;
    QVariant m_endValue;
    QVariant m_from;
    Timing m_timing;
    Completion m_completion;
    double m_motionStartMs = 0;
    quint64 m_generation = 0;
    bool m_running = false;
    bool m_deleteWhenDone = false;
};

} // namespace platform
