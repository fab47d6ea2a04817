// A stack of screens under a navigation bar: pushing slides the new screen in from the right,
// popping slides the top one out, and only the top screen is on view.
#pragma once

#include "platform/ViewController.h"

#include <functional>

namespace platform {

class FrameAnimation;
class NavigationBar;

class NavigationController : public ViewController
{
    Q_OBJECT

public:
    /// Length of an animated push or pop.
    static constexpr int TransitionDurationMs = 300;

    /// A stack holding `root`, if given, at the bottom.
    explicit NavigationController(ViewController *root = nullptr, QObject *parent = nullptr);
    ~NavigationController() override;

    /// Puts `controller` on top (it becomes a child; one without a QObject parent becomes
    /// owned by this stack). A controller already on the stack is ignored.
    void pushViewController(ViewController *controller, bool animated);
    /// Takes the top controller off, unless it is the only one, and returns it. A popped
    /// controller that this stack owns is deleted (later) once it is off screen.
    ViewController *popViewControllerAnimated(bool animated);
    /// Pops everything above the bottom controller; returns them from the bottom up.
    QList<ViewController *> popToRootViewController(bool animated);

    QList<ViewController *> viewControllers() const { return m_stack; }
    ViewController *topViewController() const { return m_stack.isEmpty() ? nullptr : m_stack.last(); }

    NavigationBar *navigationBar();
    /// The bar's bottom edge in this controller's view: where screens that run under the bar
    /// start their content.
    qreal navigationBarBottom();

    bool isTransitioning() const { return static_cast<bool>(m_transitionDone); }
    /// Ends a running push or pop at once, as if its animation had run out.
    void finishTransition();

protected:
    void viewDidLoad() override;
    void viewDidLayoutSubviews() override;
    QList<ViewController *> appearanceChildren() const override;

private:
    enum class Direction { Forward, Backward };

    void transition(
        ViewController *from, ViewController *to, Direction direction, bool animated, std::function<void()> done);
    /// Puts `to`'s view in place and on view, stacked for the slide, and shows its item.
    void placeViews(ViewController *from, ViewController *to, Direction direction);
    void slide(QWidget *view, const QRect &from, const QRect &to);
    void completeTransition();
    void release(ViewController *controller);
    void updateBar();
    QRect frameFor(ViewController *controller);

    QList<ViewController *> m_stack;
    NavigationBar *m_bar = nullptr;
    QList<QPointer<FrameAnimation>> m_transitionAnimations;
    int m_runningAnimations = 0;
    std::function<void()> m_transitionDone;
};

} // namespace platform
