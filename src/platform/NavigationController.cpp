#include "platform/NavigationController.h"

#include "platform/FrameAnimation.h"
#include "platform/NavigationBar.h"
#include "platform/NavigationItem.h"
#include "platform/Screen.h"

namespace platform {

NavigationController::NavigationController(ViewController *root, QObject *parent)
    : ViewController(parent)
{
    if (root)
        pushViewController(root, false);
}

NavigationController::~NavigationController()
{
    // The stacked controllers outlive this part of the object; their ends concern it no more.
    for (ViewController *controller : std::as_const(m_stack))
        disconnect(controller, nullptr, this, nullptr);
}

void NavigationController::pushViewController(ViewController *controller, bool animated)
{
    if (!controller || controller == this || m_stack.contains(controller))
        return;
    finishTransition();
    ViewController *from = topViewController();
    addChildViewController(controller);
    m_stack.append(controller);
    connect(controller, &QObject::destroyed, this, [this, controller] {
        m_stack.removeAll(controller);
        finishTransition();
        updateBar();
    });
    if (!isViewLoaded()) {
        controller->didMoveToParentViewController(this);
        return;
    }
    transition(from, controller, Direction::Forward, animated, [this, pushed = QPointer(controller)] {
        if (pushed)
            pushed->didMoveToParentViewController(this);
    });
}

ViewController *NavigationController::popViewControllerAnimated(bool animated)
{
    finishTransition();
    if (m_stack.size() < 2)
        return nullptr;
    ViewController *from = m_stack.takeLast();
    from->willMoveToParentViewController(nullptr);
    transition(
        from, m_stack.last(), Direction::Backward, animated, [this, popped = QPointer(from)] { release(popped); });
    return from;
}

QList<ViewController *> NavigationController::popToRootViewController(bool animated)
{
    finishTransition();
    if (m_stack.size() < 2)
        return {};
    // The ones between never come on screen: they simply leave.
    const QList<ViewController *> popped = m_stack.mid(1);
    m_stack.resize(1);
    for (ViewController *between : popped.first(popped.size() - 1)) {
        between->willMoveToParentViewController(nullptr);
        release(between);
    }
    ViewController *from = popped.last();
    from->willMoveToParentViewController(nullptr);
    transition(
        from, m_stack.first(), Direction::Backward, animated, [this, leaving = QPointer(from)] { release(leaving); });
    return popped;
}

NavigationBar *NavigationController::navigationBar()
{
    view();
    return m_bar;
}

qreal NavigationController::navigationBarBottom()
{
    const QRect bar = navigationBar()->geometry();
    return bar.y() + bar.height();
}

void NavigationController::finishTransition()
{
    const QList<QPointer<FrameAnimation>> animations = m_transitionAnimations;
    for (const QPointer<FrameAnimation> &animation : animations) {
        if (animation)
            animation->finish();
    }
    // Animations that went with their views never report back.
    if (m_transitionDone)
        completeTransition();
}

void NavigationController::viewDidLoad()
{
    m_bar = new NavigationBar(view());
    connect(m_bar, &NavigationBar::backRequested, this, [this] { popViewControllerAnimated(true); });
    if (ViewController *top = topViewController()) {
        QWidget *topView = top->view();
        topView->setParent(view());
        topView->show();
    }
    m_bar->raise();
    updateBar();
    viewDidLayoutSubviews();
}

void NavigationController::viewDidLayoutSubviews()
{
    m_bar->setGeometry(0, 0, view()->width(), qRound(Screen::navigationBarHeight()));
    ViewController *top = topViewController();
    if (top && !isTransitioning())
        top->view()->setGeometry(frameFor(top));
}

QList<ViewController *> NavigationController::appearanceChildren() const
{
    ViewController *top = topViewController();
    return top ? QList<ViewController *> { top } : QList<ViewController *> {};
}

void NavigationController::transition(
    ViewController *from, ViewController *to, Direction direction, bool animated, std::function<void()> done)
{
    const bool onScreen = appearance() == Appearance::Appeared || appearance() == Appearance::Appearing;
    animated = animated && onScreen && from;
    QWidget *toView = to->view();
    if (onScreen) {
        if (from)
            from->beginAppearanceTransition(false, animated);
        to->beginAppearanceTransition(true, animated);
    }
    placeViews(from, to, direction);

    m_transitionDone = [this, from = QPointer(from), to = QPointer(to), onScreen, done = std::move(done)] {
        if (from && from->isViewLoaded()) {
            from->view()->hide();
            from->view()->setGeometry(frameFor(from));
        }
        if (onScreen) {
            if (from)
                from->endAppearanceTransition();
            if (to)
                to->endAppearanceTransition();
        }
        done();
    };
    if (!animated) {
        completeTransition();
        return;
    }
    // The lower screen moves a third of the way, so the upper one seems to slide over it.
    const int width = view()->width();
    const bool forward = direction == Direction::Forward;
    const QRect toFrame = frameFor(to);
    const QRect fromFrame = frameFor(from);
    slide(toView, toFrame.translated(forward ? width : -width / 3, 0), toFrame);
    slide(from->view(), fromFrame, fromFrame.translated(forward ? -width / 3 : width, 0));
}

void NavigationController::placeViews(ViewController *from, ViewController *to, Direction direction)
{
    QWidget *toView = to->view();
    if (toView->parentWidget() != view())
        toView->setParent(view());
    toView->setGeometry(frameFor(to));
    toView->show();
    // The moving screen is the upper one: the pushed one, or the popped one sliding away.
    if (direction == Direction::Forward || !from)
        toView->raise();
    else
        from->view()->raise();
    m_bar->raise();
    updateBar();
}

void NavigationController::slide(QWidget *view, const QRect &from, const QRect &to)
{
    auto *animation = new FrameAnimation(view, QByteArrayLiteral("geometry"));
    animation->setStartValue(from);
    animation->setEndValue(to);
    animation->setTiming({ TransitionDurationMs, 0, FrameAnimation::Curve::EaseOut });
    animation->setDeleteWhenDone(true);
    animation->setCompletion([this](bool) {
        if (--m_runningAnimations == 0)
            completeTransition();
    });
    view->setGeometry(from);
    m_transitionAnimations.append(animation);
    ++m_runningAnimations;
    animation->start();
}

void NavigationController::completeTransition()
{
    m_transitionAnimations.clear();
    m_runningAnimations = 0;
    const std::function<void()> done = std::exchange(m_transitionDone, {});
    if (done)
        done();
    if (isViewLoaded())
        viewDidLayoutSubviews();
}

void NavigationController::release(ViewController *controller)
{
    if (!controller)
        return;
    disconnect(controller, nullptr, this, nullptr);
    controller->removeFromParentViewController();
    if (controller->parent() == this)
        controller->deleteLater();
}

void NavigationController::updateBar()
{
    if (!m_bar)
        return;
    const int count = static_cast<int>(m_stack.size());
    m_bar->setItems(count > 0 ? m_stack.last()->navigationItem() : nullptr,
        count > 1 ? m_stack.at(count - 2)->navigationItem() : nullptr);
}

QRect NavigationController::frameFor(ViewController *controller)
{
    QRect frame = view()->rect();
    if (!controller->extendsUnderNavigationBar())
        frame.setTop(qRound(navigationBarBottom()));
    return frame;
}

} // namespace platform
