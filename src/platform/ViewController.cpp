#include "platform/ViewController.h"

#include "platform/MainQueue.h"
#include "platform/NavigationController.h"
#include "platform/NavigationItem.h"

#include <QHash>
#include <QMetaMethod>

namespace platform {

namespace {

// Root views and the controllers they belong to, for finding a widget's owner.
QHash<const QWidget *, ViewController *> &owners()
{
    static QHash<const QWidget *, ViewController *> owners;
    return owners;
}

// Whether `pointerType` names a pointer that an object of `objectType` can be passed as: a
// registered QObject pointer type, or (for classes only forward-declared where the action is
// declared) the spelt-out name of the class or one of its bases.
bool acceptsObject(const QMetaType &pointerType, const QByteArray &typeName, const QMetaObject *objectType)
{
    if (pointerType.flags().testFlag(QMetaType::PointerToQObject) && pointerType.metaObject())
        return objectType->inherits(pointerType.metaObject());
    for (const QMetaObject *type = objectType; type; type = type->superClass()) {
        if (typeName == QByteArray(type->className()) + '*')
            return true;
    }
    return false;
}

QMetaMethod findAction(const QMetaObject *receiver, const char *action, QObject *argument)
{
    if (!action || !*action)
        return {};
    const QByteArray name(action);
    // From the most derived class up, so that an override of an action is the one found.
    for (int i = receiver->methodCount() - 1; i >= 0; --i) {
        const QMetaMethod method = receiver->method(i);
        if (method.methodType() != QMetaMethod::Slot && method.methodType() != QMetaMethod::Method)
            continue;
        if (method.parameterCount() != 1 || method.name() != name)
            continue;
        const QByteArray typeName = method.parameterTypeName(0);
        if (!typeName.endsWith('*'))
            continue;
        if (!argument || acceptsObject(method.parameterMetaType(0), typeName, argument->metaObject()))
            return method;
    }
    return {};
}

} // namespace

ViewController::ViewController(QObject *parent)
    : QObject(parent)
    , m_navigationItem(new NavigationItem(this))
{
}

ViewController::~ViewController()
{
    for (const QPointer<ViewController> &child : std::as_const(m_children)) {
        if (child)
            child->m_parent = nullptr;
    }
    if (m_parent)
        m_parent->m_children.removeAll(this);
    if (QWidget *view = m_view.data()) {
        owners().remove(view);
        disconnect(view, nullptr, this, nullptr);
        delete view;
    }
}

QWidget *ViewController::view()
{
    if (!m_view) {
        QWidget *view = loadView();
        m_view = view;
        owners().insert(view, this);
        connect(view, &QObject::destroyed, this, [view] { owners().remove(view); });
        view->installEventFilter(this);
        viewDidLoad();
    }
    return m_view;
}

void ViewController::setTitle(const QString &title)
{
    m_title = title;
    m_navigationItem->setTitle(title);
}

void ViewController::setExtendsUnderNavigationBar(bool extends)
{
    if (m_extendsUnderNavigationBar == extends)
        return;
    m_extendsUnderNavigationBar = extends;
    if (m_parent)
        m_parent->setNeedsLayout();
}

void ViewController::addChildViewController(ViewController *child)
{
    if (!child || child == this || m_children.contains(child))
        return;
    if (child->m_parent)
        child->removeFromParentViewController();
    if (!child->parent())
        child->setParent(this);
    child->willMoveToParentViewController(this);
    m_children.append(child);
    child->m_parent = this;
}

QList<ViewController *> ViewController::childViewControllers() const
{
    QList<ViewController *> children;
    for (const QPointer<ViewController> &child : m_children) {
        if (child)
            children.append(child);
    }
    return children;
}

void ViewController::didMoveToParentViewController(ViewController *parent)
{
    if (!parent || parent != m_parent || !isViewLoaded() || !parent->appearanceChildren().contains(this))
        return;
    if (parent->appearance() == Appearance::Appeared && m_appearance == Appearance::Disappeared) {
        beginAppearanceTransition(true, false);
        endAppearanceTransition();
    }
}

void ViewController::removeFromParentViewController()
{
    if (!m_parent)
        return;
    if (m_appearance == Appearance::Appeared || m_appearance == Appearance::Appearing) {
        beginAppearanceTransition(false, false);
        endAppearanceTransition();
    }
    m_parent->m_children.removeAll(this);
    m_parent = nullptr;
    didMoveToParentViewController(nullptr);
}

NavigationController *ViewController::navigationController() const
{
    for (ViewController *ancestor = m_parent; ancestor; ancestor = ancestor->m_parent) {
        if (auto *navigation = qobject_cast<NavigationController *>(ancestor))
            return navigation;
    }
    return nullptr;
}

void ViewController::beginAppearanceTransition(bool isAppearing, bool animated)
{
    const Appearance target = isAppearing ? Appearance::Appearing : Appearance::Disappearing;
    const Appearance settled = isAppearing ? Appearance::Appeared : Appearance::Disappeared;
    if (m_appearance == target || m_appearance == settled)
        return;
    if (isAppearing)
        view();
    m_appearance = target;
    m_transitionAnimated = animated;
    if (isAppearing)
        viewWillAppear(animated);
    else
        viewWillDisappear(animated);
    const QList<ViewController *> children = appearanceChildren();
    for (ViewController *child : children)
        child->beginAppearanceTransition(isAppearing, animated);
}

void ViewController::endAppearanceTransition()
{
    if (m_appearance == Appearance::Appearing) {
        m_appearance = Appearance::Appeared;
        viewDidAppear(m_transitionAnimated);
    } else if (m_appearance == Appearance::Disappearing) {
        m_appearance = Appearance::Disappeared;
        viewDidDisappear(m_transitionAnimated);
    } else {
        return;
    }
    const QList<ViewController *> children = appearanceChildren();
    for (ViewController *child : children)
        child->endAppearanceTransition();
}

void ViewController::setNeedsLayout()
{
    if (m_needsLayout)
        return;
    m_needsLayout = true;
    MainQueue::async(this, [this] { layoutIfNeeded(); });
}

void ViewController::layoutIfNeeded()
{
    if (m_needsLayout && isViewLoaded())
        runLayout();
}

ViewController *ViewController::owning(const QWidget *widget)
{
    for (const QWidget *w = widget; w; w = w->parentWidget()) {
        if (ViewController *owner = owners().value(w))
            return owner;
    }
    return nullptr;
}

bool ViewController::performAction(const QWidget *from, const char *action, QObject *argument)
{
    ViewController *owner = owning(from);
    return owner && owner->invokeAction(action, argument);
}

bool ViewController::respondsToAction(const char *action, QObject *argument) const
{
    return findAction(metaObject(), action, argument).isValid();
}

bool ViewController::invokeAction(const char *action, QObject *argument)
{
    const QMetaMethod method = findAction(metaObject(), action, argument);
    if (!method.isValid())
        return false;
    // Every QObject subclass starts with its QObject part, so the pointer passes as it is.
    void *arguments[] = { nullptr, &argument };
    QMetaObject::metacall(this, QMetaObject::InvokeMetaMethod, method.methodIndex(), arguments);
    return true;
}

QWidget *ViewController::loadView()
{
    auto *view = new QWidget;
    view->setAutoFillBackground(true);
    return view;
}

QList<ViewController *> ViewController::appearanceChildren() const
{
    QList<ViewController *> children;
    if (!m_view)
        return children;
    for (const QPointer<ViewController> &child : m_children) {
        if (child && child->m_view && m_view->isAncestorOf(child->m_view) && child->m_view->isVisibleTo(m_view))
            children.append(child);
    }
    return children;
}

bool ViewController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_view) {
        switch (event->type()) {
        case QEvent::Resize:
            runLayout();
            break;
        case QEvent::Show:
        case QEvent::Hide:
            followViewVisibility(event->type());
            break;
        default:
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}

void ViewController::runLayout()
{
    m_needsLayout = false;
    viewDidLayoutSubviews();
}

void ViewController::followViewVisibility(QEvent::Type type)
{
    // Contained controllers are told by their containers, and a view placed inside another
    // controller's view waits to be contained; only a free-standing root follows its view.
    if (m_parent || owning(m_view->parentWidget()))
        return;
    beginAppearanceTransition(type == QEvent::Show, false);
    endAppearanceTransition();
}

} // namespace platform
