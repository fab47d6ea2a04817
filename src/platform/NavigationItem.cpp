#include "platform/NavigationItem.h"

namespace platform {

NavigationItem::NavigationItem(QObject *parent)
    : QObject(parent)
{
}

NavigationItem::~NavigationItem()
{
    // The widget lives in whichever bar shows it; it goes with its item.
    delete m_rightItemWidget.data();
}

void NavigationItem::setTitle(const QString &title)
{
    if (m_title == title)
        return;
    m_title = title;
    Q_EMIT changed();
}

void NavigationItem::setBackButtonTitle(const QString &title)
{
    if (m_backButtonTitle == title)
        return;
    m_backButtonTitle = title;
    Q_EMIT changed();
}

void NavigationItem::setRightItemWidget(QWidget *widget)
{
    if (m_rightItemWidget == widget)
        return;
    delete m_rightItemWidget.data();
    m_rightItemWidget = widget;
    if (widget)
        widget->hide();
    Q_EMIT changed();
}

} // namespace platform
