// A screen, or a part of one, that manages a tree of widgets: the root view is built on first
// use, and the controller is told when its view appears and disappears. Controllers nest (a
// chat screen hosting a card), sit on a navigation stack, and receive actions that their views
// send up by name.
#pragma once

#include <QEvent>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QWidget>

namespace platform {

class NavigationController;
class NavigationItem;

class ViewController : public QObject
{
    Q_OBJECT

public:
    explicit ViewController(QObject *parent = nullptr);
    /// Deletes the root view too, wherever it has been placed.
    ~ViewController() override;

    /// The root view, built by loadView() and then viewDidLoad() on first use.
    QWidget *view();
    bool isViewLoaded() const { return !m_view.isNull(); }

    /// The title; setting it sets the navigation item's title too.
    QString title() const { return m_title; }
    void setTitle(const QString &title);
    /// What the navigation bar shows while this controller is on top of a stack.
    NavigationItem *navigationItem() const { return m_navigationItem; }

    /// Whether a navigation controller lays the root view out over its whole height, under the
    /// bar (true, the default), or only below the bar.
    bool extendsUnderNavigationBar() const { return m_extendsUnderNavigationBar; }
    void setExtendsUnderNavigationBar(bool extends);

    // Containment. A child without a QObject parent becomes owned by this controller; one that
    // is owned elsewhere (a cell holding its card) keeps its owner. Placing the child's view in
    // this view is the caller's part, between the add and didMoveToParentViewController().
    void addChildViewController(ViewController *child);
    QList<ViewController *> childViewControllers() const;
    ViewController *parentViewController() const { return m_parent; }
    /// Called by the parent's addChildViewController() and by a container before it removes
    /// this controller (with nullptr); override to prepare for the move.
    virtual void willMoveToParentViewController(ViewController *parent) { Q_UNUSED(parent) }
    /// Called by whoever added this controller once its view is in place; a child whose view
    /// lands visible in a parent already on screen appears here.
    void didMoveToParentViewController(ViewController *parent);
    /// Leaves the parent: disappears first when on screen, then didMoveToParentViewController(nullptr).
    /// Ownership does not change.
    void removeFromParentViewController();
    /// The nearest navigation controller among the ancestors.
    NavigationController *navigationController() const;

    // Appearance transitions, each reported exactly once: will then did. Containers call these
    // for their children; a controller without a parent, whose view is not inside another
    // controller's view, follows its view being shown and hidden.
    enum class Appearance { Disappeared, Appearing, Appeared, Disappearing };
    Appearance appearance() const { return m_appearance; }
    void beginAppearanceTransition(bool isAppearing, bool animated);
    void endAppearanceTransition();

    /// Asks for viewDidLayoutSubviews() on a later turn of the event loop (once, however often
    /// asked), unless layoutIfNeeded() runs it sooner.
    void setNeedsLayout();
    void layoutIfNeeded();

    /// The controller whose root view is `widget` or its nearest ancestor widget, or nullptr.
    static ViewController *owning(const QWidget *widget);
    /// Delivers the action named `action` with `argument` to the controller owning `from`, when
    /// that controller answers to it: a slot or Q_INVOKABLE method of that name taking one
    /// pointer that `argument` can be. Returns whether it was delivered; an empty name, no
    /// owner or no such method deliver nothing.
    static bool performAction(const QWidget *from, const char *action, QObject *argument);
    /// Whether this controller answers to `action` with `argument` (as above).
    bool respondsToAction(const char *action, QObject *argument) const;
    /// Invokes `action` on this controller; false when it does not answer to it.
    bool invokeAction(const char *action, QObject *argument);

protected:
    /// Builds the root view; the default is an empty widget filled with the window colour.
    virtual QWidget *loadView();
    virtual void viewDidLoad() { }
    virtual void viewWillAppear(bool animated) { Q_UNUSED(animated) }
    virtual void viewDidAppear(bool animated) { Q_UNUSED(animated) }
    virtual void viewWillDisappear(bool animated) { Q_UNUSED(animated) }
    virtual void viewDidDisappear(bool animated) { Q_UNUSED(animated) }
    /// The root view has been resized, shown, or asked to lay out: place the subviews.
    virtual void viewDidLayoutSubviews() { }
    /// The children that follow this controller's appearance: by default those whose views
    /// are loaded and visible within this controller's view.
    virtual QList<ViewController *> appearanceChildren() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void runLayout();
    void followViewVisibility(QEvent::Type type);

    QPointer<QWidget> m_view;
    QString m_title;
    NavigationItem *m_navigationItem;
    QPointer<ViewController> m_parent;
    QList<QPointer<ViewController>> m_children;
    Appearance m_appearance = Appearance::Disappeared;
    bool m_transitionAnimated = false;
    bool m_extendsUnderNavigationBar = true;
    bool m_needsLayout = false;
};

} // namespace platform
