#include "platform/NavigationBar.h"

#include "platform/NavigationItem.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

namespace platform {

namespace {

constexpr int BackMargin = 8;
constexpr int RightMargin = 16;
constexpr int TitleGap = 8;
const QSize ChevronSize(13, 21);

QString fallbackBackTitle()
{
    return NavigationBar::tr("Back");
}

} // namespace

NavigationBar::NavigationBar(QWidget *parent)
    : QWidget(parent)
    , m_titleLabel(new QLabel(this))
    , m_backButton(new QToolButton(this))
    , m_hairline(new QWidget(this))
{
    setObjectName(QStringLiteral("navigationBar"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);

    m_titleLabel->setObjectName(QStringLiteral("navigationTitleLabel"));
    m_titleLabel->setFont(SystemFont::font(17, QFont::DemiBold));
    m_titleLabel->setAlignment(Qt::AlignCenter);

    m_backButton->setObjectName(QStringLiteral("navigationBackButton"));
    m_backButton->setAccessibleName(fallbackBackTitle());
    m_backButton->setFont(SystemFont::regular(17));
    m_backButton->setAutoRaise(true);
    // A phone's back button is bare text beside a chevron: no frame, not even under a pointer.
    m_backButton->setAttribute(Qt::WA_Hover, false);
    m_backButton->setStyleSheet(QStringLiteral("QToolButton { border: none; background: transparent; }"));
    m_backButton->setFocusPolicy(Qt::TabFocus);
    m_backButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_backButton->setIconSize(ChevronSize);
    m_backButton->hide();
    connect(m_backButton, &QToolButton::clicked, this, &NavigationBar::backRequested);

    m_hairline->setObjectName(QStringLiteral("navigationBarHairline"));
    m_hairline->setAutoFillBackground(true);
    m_hairline->setBackgroundRole(QPalette::Mid);

    paintChevron();
    resize(sizeHint());
}

void NavigationBar::setItems(NavigationItem *top, NavigationItem *back)
{
    if (m_top && m_top != top) {
        if (QWidget *right = m_top->rightItemWidget())
            right->hide();
    }
    // The bar follows both items: the back button is titled after the one below the top.
    for (NavigationItem *old : { m_top.data(), m_back.data() }) {
        if (old)
            disconnect(old, nullptr, this, nullptr);
    }
    m_top = top;
    m_back = back;
    for (NavigationItem *item : { top, back }) {
        if (item)
            connect(item, &NavigationItem::changed, this, &NavigationBar::refresh);
    }
    refresh();
}

QString NavigationBar::backTitle(const NavigationItem *back)
{
    if (!back)
        return fallbackBackTitle();
    if (!back->backButtonTitle().isEmpty())
        return back->backButtonTitle();
    return back->title().isEmpty() ? fallbackBackTitle() : back->title();
}

QSize NavigationBar::sizeHint() const
{
    return QSize(qRound(Screen::width()), qRound(Screen::navigationBarHeight()));
}

void NavigationBar::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutContent();
}

void NavigationBar::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        paintChevron();
}

void NavigationBar::refresh()
{
    m_backButton->setVisible(!m_back.isNull());
    if (m_top) {
        if (QWidget *right = m_top->rightItemWidget()) {
            if (right->parentWidget() != this)
                right->setParent(this);
            right->show();
        }
    }
    layoutContent();
}

void NavigationBar::layoutContent()
{
    const int rowTop = height() - ContentHeight;
    auto centreInRow = [rowTop](QWidget *widget, int x, QSize size) {
        widget->setGeometry(x, rowTop + (ContentHeight - size.height()) / 2, size.width(), size.height());
    };
    m_hairline->setGeometry(0, height() - 1, width(), 1);

    int rightExtent = 0;
    if (QWidget *right = m_top ? m_top->rightItemWidget() : nullptr) {
        const QSize size = right->testAttribute(Qt::WA_Resized) ? right->size() : right->sizeHint();
        centreInRow(right, width() - RightMargin - size.width(), size);
        rightExtent = RightMargin + size.width();
    }

    // The title is centred on the bar, as wide as its text, but never under either button.
    const QString title = m_top ? m_top->title() : QString();
    const QFontMetrics titleMetrics(m_titleLabel->font());
    m_backButton->setText(backTitle(m_back));
    int leftExtent = m_back ? BackMargin + m_backButton->sizeHint().width() : 0;
    int room = width() - 2 * (std::max(leftExtent, rightExtent) + TitleGap);
    if (m_back && room < titleMetrics.horizontalAdvance(title)) {
        // A long previous title gives way to the short one, as the phone does.
        m_backButton->setText(fallbackBackTitle());
        leftExtent = BackMargin + m_backButton->sizeHint().width();
        room = width() - 2 * (std::max(leftExtent, rightExtent) + TitleGap);
    }
    const QString shown = titleMetrics.elidedText(title, Qt::ElideRight, std::max(room, 0));
    const int titleWidth = std::min(titleMetrics.horizontalAdvance(shown) + 2, std::max(room, 0));
    m_titleLabel->setText(shown);
    centreInRow(m_titleLabel, (width() - titleWidth) / 2, QSize(titleWidth, ContentHeight));
    if (m_back)
        centreInRow(m_backButton, BackMargin, m_backButton->sizeHint());
}

void NavigationBar::paintChevron()
{
    const QColor tint = palette().color(QPalette::Link);
    QPalette buttonPalette = m_backButton->palette();
    buttonPalette.setColor(QPalette::ButtonText, tint);
    m_backButton->setPalette(buttonPalette);
    m_backButton->setStyleSheet(QStringLiteral("QToolButton { border: none; background: transparent; color: %1; }")
                                    .arg(tint.name(QColor::HexArgb)));

    QPixmap chevron(ChevronSize);
    chevron.fill(Qt::transparent);
    QPainter painter(&chevron);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(tint, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF points[] = { { 10.5, 2 }, { 2.5, 10.5 }, { 10.5, 19 } };
    painter.drawPolyline(points, 3);
    painter.end();
    m_backButton->setIcon(QIcon(chevron));
}

} // namespace platform
