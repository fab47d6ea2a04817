// The bar across the top of a navigation stack: the status area, then a row with a back button
// (a chevron and the previous screen's title) on the left, the top screen's title in the centre
// and its own widget on the right, over a hairline.
#pragma once

#include <QPointer>
#include <QWidget>

class QLabel;
class QToolButton;

namespace platform {

class NavigationItem;

class NavigationBar : public QWidget
{
    Q_OBJECT

public:
    /// Height of the row below the status area.
    static constexpr int ContentHeight = 44;

    explicit NavigationBar(QWidget *parent = nullptr);

    /// Shows `top`; with a `back` item, a back button titled after it.
    void setItems(NavigationItem *top, NavigationItem *back);
    NavigationItem *topItem() const { return m_top; }

    /// The back button's title under `back`: its back title, else its title, else "Back".
    static QString backTitle(const NavigationItem *back);

    QLabel *titleLabel() const { return m_titleLabel; }
    QToolButton *backButton() const { return m_backButton; }

    /// The screen's width and the height of a navigation bar with its status area.
    QSize sizeHint() const override;

Q_SIGNALS:
    /// The back button was tapped.
    void backRequested();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void refresh();
    void layoutContent();
    void paintChevron();

    QPointer<NavigationItem> m_top;
    QPointer<NavigationItem> m_back;
    QLabel *m_titleLabel;
    QToolButton *m_backButton;
    QWidget *m_hairline;
};

} // namespace platform
