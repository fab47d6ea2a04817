// What a screen shows in the navigation bar while it is on top: its title, a widget on the right
// (a Send button, say) and the title its back button has on the screen pushed after it.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace platform {

class NavigationItem : public QObject
{
    Q_OBJECT

public:
    explicit NavigationItem(QObject *parent = nullptr);
    ~NavigationItem() override;

    QString title() const { return m_title; }
    void setTitle(const QString &title);

    /// The back button's title on the screen above this one; empty means "use the title".
    QString backButtonTitle() const { return m_backButtonTitle; }
    void setBackButtonTitle(const QString &title);

    /// The widget at the bar's right end. The item owns it (a previous one is deleted); the bar
    /// shows it at its own size when it was resized explicitly, else at its size hint.
    QWidget *rightItemWidget() const { return m_rightItemWidget; }
    void setRightItemWidget(QWidget *widget);

Q_SIGNALS:
    /// Any of the above changed.
    void changed();

private:
    QString m_title;
    QString m_backButtonTitle;
    QPointer<QWidget> m_rightItemWidget;
};

} // namespace platform
