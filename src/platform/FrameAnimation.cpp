#include "platform/FrameAnimation.h"

#include "platform/MainQueue.h"

#include <QGraphicsOpacityEffect>
#include <QWidget>

#include <cmath>

namespace platform {

namespace {

qreal lerp(qreal from, qreal to, qreal progress)
{
    return from + (to - from) * progress;
}

QPointF lerp(const QPointF &from, const QPointF &to, qreal progress)
{
    return from + (to - from) * progress;
}

QSizeF lerp(const QSizeF &from, const QSizeF &to, qreal progress)
{
    return from + (to - from) * progress;
}

QRectF lerp(const QRectF &from, const QRectF &to, qreal progress)
{
    return QRectF(lerp(from.topLeft(), to.topLeft(), progress), lerp(from.size(), to.size(), progress));
}

// The phone's standard timing curves, as cubic Béziers from (0, 0) to (1, 1).
QEasingCurve curveOf(FrameAnimation::Curve curve)
{
    QEasingCurve bezier(QEasingCurve::BezierSpline);
    switch (curve) {
    case FrameAnimation::Curve::Linear:
        return QEasingCurve(QEasingCurve::Linear);
    case FrameAnimation::Curve::EaseIn:
        bezier.addCubicBezierSegment(QPointF(0.42, 0), QPointF(1, 1), QPointF(1, 1));
        break;
    case FrameAnimation::Curve::EaseOut:
        bezier.addCubicBezierSegment(QPointF(0, 0), QPointF(0.58, 1), QPointF(1, 1));
        break;
    case FrameAnimation::Curve::EaseInOut:
        bezier.addCubicBezierSegment(QPointF(0.42, 0), QPointF(0.58, 1), QPointF(1, 1));
        break;
    }
    return bezier;
}

} // namespace

FrameAnimation::FrameAnimation(QObject *target, const QByteArray &propertyName)
    : QObject(target)
    , m_target(target)
    , m_propertyName(propertyName)
{
}

FrameAnimation::~FrameAnimation() = default;

FrameAnimation *FrameAnimation::animateFrame(QWidget *widget, const QRect &frame, Timing timing, Completion completion)
{
    return startOnce(widget, QByteArrayLiteral("geometry"), frame, timing, std::move(completion));
}

FrameAnimation *FrameAnimation::animateOpacity(QWidget *widget, qreal opacity, Timing timing, Completion completion)
{
    auto *effect = qobject_cast<QGraphicsOpacityEffect *>(widget->graphicsEffect());
    if (!effect) {
        effect = new QGraphicsOpacityEffect(widget);
        effect->setOpacity(1);
        widget->setGraphicsEffect(effect);
    }
    return startOnce(effect, QByteArrayLiteral("opacity"), opacity, timing, std::move(completion));
}

FrameAnimation *FrameAnimation::startOnce(
    QObject *target, const QByteArray &propertyName, const QVariant &endValue, Timing timing, Completion completion)
{
    auto *animation = new FrameAnimation(target, propertyName);
    animation->setEndValue(endValue);
    animation->setTiming(timing);
    animation->setCompletion(std::move(completion));
    animation->setDeleteWhenDone(true);
    animation->start();
    return animation;
}

qreal FrameAnimation::opacityOf(const QWidget *widget)
{
    const auto *effect = qobject_cast<const QGraphicsOpacityEffect *>(widget->graphicsEffect());
    return effect ? effect->opacity() : 1.0;
}

void FrameAnimation::start()
{
    if (!m_target)
        return;
    // A newer animation of the same property takes over from wherever the older one stands.
    const auto siblings = m_target->findChildren<FrameAnimation *>(Qt::FindDirectChildrenOnly);
    for (FrameAnimation *other : siblings) {
        if (other != this && other->m_propertyName == m_propertyName)
            other->stop();
    }
    if (m_running)
        end(false);
    m_running = true;
    ++m_generation;
    m_from = QVariant();
    m_motionStartMs = MainQueue::now() + std::max(m_timing.delayMs, 0);
    if (m_timing.delayMs > 0)
        scheduleStep(m_timing.delayMs);
    else
        step();
}

void FrameAnimation::stop()
{
    if (!m_running)
        return;
    // The property stays where the motion stands now, not where the last frame left it.
    if (m_target && m_from.isValid())
        m_target->setProperty(m_propertyName.constData(), valueNow());
    end(false);
}

void FrameAnimation::finish()
{
    if (!m_running)
        return;
    if (m_target)
        m_target->setProperty(m_propertyName.constData(), m_endValue);
    end(true);
}

qreal FrameAnimation::eased(Curve curve, qreal fraction)
{
    return curveOf(curve).valueForProgress(std::clamp(fraction, 0.0, 1.0));
}

QVariant FrameAnimation::interpolated(const QVariant &from, const QVariant &to, qreal progress)
{
    switch (from.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
        return lerp(from.toDouble(), to.toDouble(), progress);
    case QMetaType::QRectF:
        return lerp(from.toRectF(), to.toRectF(), progress);
    case QMetaType::QRect:
        return lerp(QRectF(from.toRect()), QRectF(to.toRect()), progress).toRect();
    case QMetaType::QPointF:
        return lerp(from.toPointF(), to.toPointF(), progress);
    case QMetaType::QPoint:
        return lerp(QPointF(from.toPoint()), QPointF(to.toPoint()), progress).toPoint();
    case QMetaType::QSizeF:
        return lerp(from.toSizeF(), to.toSizeF(), progress);
    case QMetaType::QSize:
        return lerp(QSizeF(from.toSize()), QSizeF(to.toSize()), progress).toSize();
    default:
        return progress < 1 ? from : to;
    }
}

void FrameAnimation::scheduleStep(int delayMs)
{
    MainQueue::after(delayMs, this, [this, generation = m_generation] {
        if (generation == m_generation && m_running)
            step();
    });
}

void FrameAnimation::step()
{
    if (!m_target) {
        end(false);
        return;
    }
    if (!m_from.isValid())
        m_from = m_startValue.isValid() ? m_startValue : m_target->property(m_propertyName.constData());
    if (fractionNow() >= 1) {
        finish();
        return;
    }
    m_target->setProperty(m_propertyName.constData(), valueNow());
    // The last step lands exactly on the end, so a clock advanced by the duration sees it done.
    const double endMs = m_motionStartMs + std::max(m_timing.durationMs, 0);
    const int remaining = static_cast<int>(std::ceil(endMs - MainQueue::now()));
    scheduleStep(std::clamp(remaining, 1, FrameIntervalMs));
}

qreal FrameAnimation::fractionNow() const
{
    const int duration = std::max(m_timing.durationMs, 0);
    const double elapsed = MainQueue::now() - m_motionStartMs;
    return duration > 0 ? std::clamp(elapsed / duration, 0.0, 1.0) : 1.0;
}

QVariant FrameAnimation::valueNow() const
{
    return interpolated(m_from, m_endValue, eased(m_timing.curve, fractionNow()));
}

void FrameAnimation::end(bool finished)
{
    m_running = false;
    ++m_generation;
    // The completion may start this animation again, so it is taken out before it runs.
    Completion completion = std::exchange(m_completion, {});
    if (m_deleteWhenDone)
        deleteLater();
    if (completion)
        completion(finished);
}

} // namespace platform
