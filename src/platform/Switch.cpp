#include "platform/Switch.h"

#include "platform/FrameAnimation.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

namespace platform {

namespace {

constexpr qreal KnobInset = 2;
constexpr qreal KnobDiameter = Switch::Size.height() - 2 * KnobInset;
constexpr qreal ShadowSpread = 3;
constexpr qreal ShadowDrop = 2;

QColor mixed(const QColor &from, const QColor &to, qreal progress)
{
    const auto lerp = [progress](float a, float b) { return a + (b - a) * float(progress); };
    return QColor::fromRgbF(lerp(from.redF(), to.redF()), lerp(from.greenF(), to.greenF()),
        lerp(from.blueF(), to.blueF()), lerp(from.alphaF(), to.alphaF()));
}

// What assistive technologies see: a check box that is checkable, checked when on, and whose
// press and toggle actions flip it as a tap does.
class SwitchAccessible : public QAccessibleWidget
{
public:
    explicit SwitchAccessible(Switch *widget)
        : QAccessibleWidget(widget, QAccessible::CheckBox)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = toggle()->isOn();
        return state;
    }

    QStringList actionNames() const override { return { toggleAction(), pressAction() }; }

    void doAction(const QString &actionName) override
    {
        if ((actionName == toggleAction() || actionName == pressAction()) && toggle()->isEnabled())
            toggle()->toggle();
    }

private:
    Switch *toggle() const { return static_cast<Switch *>(widget()); }
};

QAccessibleInterface *switchAccessibleFactory(const QString &className, QObject *object)
{
    if (className == QLatin1String(Switch::staticMetaObject.className()) && object && object->isWidgetType())
        return new SwitchAccessible(static_cast<Switch *>(object));
    return nullptr;
}

} // namespace

Switch::Switch(QWidget *parent)
    : QWidget(parent)
    , m_onTintColor(0x34, 0xC7, 0x59)
    , m_offTintColor(0xE9, 0xE9, 0xEA)
    , m_thumbTintColor(Qt::white)
{
    static const bool factoryInstalled = [] {
        QAccessible::installFactory(switchAccessibleFactory);
        return true;
    }();
    Q_UNUSED(factoryInstalled)
    setFixedSize(Size);
    // A tap must not take the focus from a text field being edited; Tab still reaches it.
    setFocusPolicy(Qt::TabFocus);
}

void Switch::setOn(bool on, bool animated)
{
    if (m_on == on)
        return;
    m_on = on;
    moveKnob(animated);
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

void Switch::toggle()
{
    setOn(!m_on, true);
    Q_EMIT toggled(m_on);
}

void Switch::setOnTintColor(const QColor &color)
{
    m_onTintColor = color;
    update();
}

void Switch::setOffTintColor(const QColor &color)
{
    m_offTintColor = color;
    update();
}

void Switch::setThumbTintColor(const QColor &color)
{
    m_thumbTintColor = color;
    update();
}

void Switch::setKnobPosition(qreal position)
{
    m_knobPosition = std::clamp(position, 0.0, 1.0);
    update();
}

void Switch::moveKnob(bool animated)
{
    const qreal target = m_on ? 1.0 : 0.0;
    auto *animation = new FrameAnimation(this, QByteArrayLiteral("knobPosition"));
    animation->setEndValue(target);
    animation->setTiming({ animated ? AnimationDurationMs : 0, 0, FrameAnimation::Curve::EaseOut });
    animation->setDeleteWhenDone(true);
    // Starting also stops a slide still running, so a quick second flip turns the knob around.
    animation->start();
}

void Switch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(0.5);

    const QRectF track(0, 0, Size.width(), Size.height());
    painter.setPen(Qt::NoPen);
    painter.setBrush(mixed(m_offTintColor, m_onTintColor, m_knobPosition));
    painter.drawRoundedRect(track, track.height() / 2, track.height() / 2);

    const qreal travel = track.width() - 2 * KnobInset - KnobDiameter;
    const QRectF knob(KnobInset + travel * m_knobPosition, KnobInset, KnobDiameter, KnobDiameter);
    // A soft shadow: a radial fade a little below the knob, clipped to the track.
    const QPointF shadowCentre = knob.center() + QPointF(0, ShadowDrop);
    const qreal shadowRadius = KnobDiameter / 2 + ShadowSpread;
    QRadialGradient shadow(shadowCentre, shadowRadius);
    shadow.setColorAt(0, QColor(0, 0, 0, 60));
    shadow.setColorAt((KnobDiameter / 2 - 1) / shadowRadius, QColor(0, 0, 0, 40));
    shadow.setColorAt(1, QColor(0, 0, 0, 0));
    QPainterPath clip;
    clip.addRoundedRect(track, track.height() / 2, track.height() / 2);
    painter.setClipPath(clip);
    painter.setBrush(shadow);
    painter.drawEllipse(shadowCentre, shadowRadius, shadowRadius);
    painter.setClipping(false);

    painter.setBrush(m_thumbTintColor);
    painter.drawEllipse(knob);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(m_onTintColor, 2));
        painter.drawRoundedRect(track.adjusted(1, 1, -1, -1), track.height() / 2 - 1, track.height() / 2 - 1);
    }
}

void Switch::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_pressed = true;
    event->accept();
}

void Switch::mouseReleaseEvent(QMouseEvent *event)
{
    const bool tapped = m_pressed && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint());
    m_pressed = false;
    event->accept();
    if (tapped)
        toggle();
}

void Switch::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
        toggle();
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace platform
