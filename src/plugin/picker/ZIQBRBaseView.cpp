#include "plugin/picker/ZIQBRBaseView.h"

#include "kit/common/ZIQGlobalization.h"
#include "platform/MainQueue.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QGraphicsOpacityEffect>
#include <QKeyEvent>
#include <QLabel>
#include <QPainterPath>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

void fill(QWidget *widget, const QColor &color)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, color.isValid() ? color : QColor(Qt::transparent));
    widget->setPalette(palette);
    widget->setAutoFillBackground(true);
}

int lineThickness(qreal height)
{
    return std::max(1, qRound(height));
}

QString css(const QColor &color)
{
    return QStringLiteral("rgba(%1,%2,%3,%4)")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue())
        .arg(color.alphaF());
}

void styleButton(QPushButton *button, const QString &title, const QColor &background, const QColor &textColor,
    const QFont &font, ZIQBRBorderStyle border, qreal radius, qreal borderWidth, const QPixmap &image)
{
    button->setText(title);
    button->setFont(font);
    button->setIcon(image.isNull() ? QIcon() : QIcon(image));
    button->setIconSize(image.isNull() ? QSize() : image.deviceIndependentSize().toSize());
    const QString borderCss = border == ZIQBRBorderStyle::Solid
        ? QStringLiteral("%1px solid %2").arg(std::max<qreal>(borderWidth, 1)).arg(css(textColor))
        : QStringLiteral("none");
    const qreal corner = border == ZIQBRBorderStyle::Fill && radius <= 0 ? 6 : radius;
    button->setStyleSheet(QStringLiteral("QPushButton { background: %1; color: %2; border: %3; border-radius: %4px; "
                                         "padding: 0; }")
                              .arg(css(background), css(textColor), borderCss)
                              .arg(corner));
}

/// Where a line of `font` centred in a box `height` high rests its baseline, from the box's top.
qreal centredBaseline(const QFont &font, qreal height)
{
    const QFontMetricsF metrics(font);
    return (height - metrics.height()) / 2 + metrics.ascent();
}

/// The title's frame moved onto the baseline of Cancel's title: texts of different sizes, each
/// centred in its own box, would otherwise rest a pixel apart.
QRect titleOnButtonBaseline(const ZIQBRPickerStyle &style, qreal width)
{
    const QRectF frame = style.titleLabelFrame(width);
    const QRectF button = style.cancelBtnFrame();
    const qreal buttonBaseline = button.top() + centredBaseline(style.cancelTextFont(), button.height());
    const qreal titleBaseline = frame.top() + centredBaseline(style.titleTextFont(), frame.height());
    return frame.toRect().translated(0, qRound(buttonBaseline) - qRound(titleBaseline));
}

} // namespace

ZIQBRBaseView::ZIQBRBaseView(QWidget *parent)
    : QWidget(parent)
    , m_keyView(parent)
{
    QWidget::hide();
}

ZIQBRBaseView::~ZIQBRBaseView() = default;

void ZIQBRBaseView::setTitle(const QString &title)
{
    m_title = title;
    if (m_titleLabel)
        m_titleLabel->setText(title);
}

void ZIQBRBaseView::setPickerHeaderView(QWidget *view)
{
    delete m_pickerHeaderView;
    m_pickerHeaderView = view;
}

void ZIQBRBaseView::setPickerFooterView(QWidget *view)
{
    delete m_pickerFooterView;
    m_pickerFooterView = view;
}

QWidget *ZIQ_BRGetKeyWindow(const QWidget *except)
{
    if (QWidget *active = QApplication::activeWindow(); active && active != except)
        return active;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window != except && window->isVisible())
            return window;
    }
    return nullptr;
}

QWidget *ZIQBRBaseView::keyView() const
{
    return m_keyView ? m_keyView->window() : ZIQ_BRGetKeyWindow(this);
}

void ZIQBRBaseView::show()
{
    QWidget *key = keyView();
    if (!key) {
        qWarning("ZIQBRBaseView: no window to show the picker in");
        return;
    }
    if (parentWidget() != key)
        setParent(key);
    key->installEventFilter(this);
    m_dismissing = false;
    initUI();
    reloadPicker();
    layoutSheet();
    m_maskEffect->setOpacity(0);
    m_alertView->move(0, height());
    QWidget::show();
    raise();
    animate(1, height() - qRound(panelHeight()), ShowDurationMs, nullptr);
}

void ZIQBRBaseView::dismiss()
{
    if (m_dismissing || !m_alertView)
        return;
    m_dismissing = true;
    animate(0, height(), DismissDurationMs, [this] {
        QWidget::hide();
        deleteLater();
    });
}

qreal ZIQBRBaseView::maskOpacity() const
{
    return m_maskEffect ? m_maskEffect->opacity() : 0;
}

qreal ZIQBRBaseView::panelHeight() const
{
    const qreal header = m_pickerHeaderView ? m_pickerHeaderView->sizeHint().height() : 0;
    const qreal footer = m_pickerFooterView ? m_pickerFooterView->sizeHint().height() : 0;
    return m_pickerStyle.titleBarHeight() + header + m_pickerStyle.pickerHeight() + footer
        + m_pickerStyle.paddingBottom();
}

bool ZIQBRBaseView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_maskView && event->type() == QEvent::MouseButtonRelease) {
        onCancel();
        return true;
    }
    if (watched == parentWidget() && event->type() == QEvent::Resize && m_alertView && !m_dismissing) {
        layoutSheet();
        m_alertView->move(0, height() - qRound(panelHeight()));
    }
    return QWidget::eventFilter(watched, event);
}

void ZIQBRBaseView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        return onCancel();
    QWidget::keyPressEvent(event);
}

void ZIQBRBaseView::initUI()
{
    if (m_alertView)
        return;
    m_maskView = new QWidget(this);
    m_maskView->setObjectName(QStringLiteral("maskView"));
    m_maskEffect = new QGraphicsOpacityEffect(m_maskView);
    m_maskView->setGraphicsEffect(m_maskEffect);
    m_maskView->installEventFilter(this);

    m_alertView = new QWidget(this);
    m_alertView->setObjectName(QStringLiteral("alertView"));
    m_titleBarView = new QWidget(m_alertView);
    m_titleBarView->setObjectName(QStringLiteral("titleBarView"));
    m_cancelBtn = new QPushButton(m_titleBarView);
    m_cancelBtn->setObjectName(QStringLiteral("cancelBtn"));
    m_titleLabel = new QLabel(m_titleBarView);
    m_titleLabel->setObjectName(QStringLiteral("titleLabel"));
    m_titleLabel->setAlignment(Qt::AlignCenter);
    m_doneBtn = new QPushButton(m_titleBarView);
    m_doneBtn->setObjectName(QStringLiteral("doneBtn"));
    m_titleLine = new QWidget(m_titleBarView);
    m_pickerArea = new QWidget(m_alertView);
    m_pickerArea->setObjectName(QStringLiteral("pickerArea"));
    auto *areaLayout = new QVBoxLayout(m_pickerArea);
    areaLayout->setContentsMargins(0, 0, 0, 0);
    if (QWidget *content = pickerContentView())
        areaLayout->addWidget(content);
    m_shadowLine = new QWidget(m_alertView);

    // The buttons may show only an image.
    m_cancelBtn->setAccessibleName(
        ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteNotDatePickerCancel")));
    m_doneBtn->setAccessibleName(
        ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteNotDatePickerConfirm")));
    connect(m_cancelBtn, &QPushButton::clicked, this, &ZIQBRBaseView::onCancel);
    connect(m_doneBtn, &QPushButton::clicked, this, &ZIQBRBaseView::onDone);
    m_animation = new QParallelAnimationGroup(this);
}

void ZIQBRBaseView::layoutSheet()
{
    const ZIQBRPickerStyle &style = m_pickerStyle;
    setGeometry(parentWidget()->rect());
    const int w = width();
    m_maskView->setGeometry(rect());
    fill(m_maskView, style.maskColor());
    m_maskView->setVisible(!style.hiddenMaskView());

    int y = qRound(style.titleBarHeight());
    m_titleBarView->setGeometry(0, 0, w, y);
    m_titleBarView->setVisible(y > 0);
    styleTitleBar(w);
    if (m_pickerHeaderView) {
        m_pickerHeaderView->setParent(m_alertView);
        m_pickerHeaderView->setGeometry(0, y, w, m_pickerHeaderView->sizeHint().height());
        m_pickerHeaderView->show();
        y += m_pickerHeaderView->height();
    }
    m_pickerArea->setGeometry(0, y, w, qRound(style.pickerHeight()));
    fill(m_pickerArea, style.pickerColor());
    y += m_pickerArea->height();
    if (m_pickerFooterView) {
        m_pickerFooterView->setParent(m_alertView);
        m_pickerFooterView->setGeometry(0, y, w, m_pickerFooterView->sizeHint().height());
        m_pickerFooterView->show();
    }

    m_alertView->resize(w, qRound(panelHeight()));
    // Below the picker, the padding over the home indicator continues the picker's colour.
    fill(m_alertView, style.alertViewColor().isValid() ? style.alertViewColor() : style.pickerColor());
    const qreal radius = style.topCornerRadius();
    if (radius > 0) {
        QPainterPath path;
        path.addRoundedRect(QRectF(m_alertView->rect()).adjusted(0, 0, 0, radius), radius, radius);
        m_alertView->setMask(QRegion(path.toFillPolygon().toPolygon()));
    } else {
        m_alertView->clearMask();
    }
    m_shadowLine->setGeometry(0, 0, w, lineThickness(style.shadowLineHeight()));
    fill(m_shadowLine, style.shadowLineColor());
    m_shadowLine->setVisible(!style.hiddenShadowLine() && radius <= 0);
    m_shadowLine->raise();
}

void ZIQBRBaseView::styleTitleBar(qreal width)
{
    const ZIQBRPickerStyle &style = m_pickerStyle;
    fill(m_titleBarView, style.titleBarColor());
    m_cancelBtn->setGeometry(style.cancelBtnFrame().toRect());
    styleButton(m_cancelBtn, style.cancelBtnTitle(), style.cancelColor(), style.cancelTextColor(),
        style.cancelTextFont(), style.cancelBorderStyle(), style.cancelCornerRadius(), style.cancelBorderWidth(),
        style.cancelBtnImage());
    m_cancelBtn->setVisible(!style.hiddenCancelBtn());
    m_doneBtn->setGeometry(style.doneBtnFrame(width).toRect());
    styleButton(m_doneBtn, style.doneBtnTitle(), style.doneColor(), style.doneTextColor(), style.doneTextFont(),
        style.doneBorderStyle(), style.doneCornerRadius(), style.doneBorderWidth(), style.doneBtnImage());
    m_doneBtn->setVisible(!style.hiddenDoneBtn());
    m_titleLabel->setGeometry(titleOnButtonBaseline(style, width));
    m_titleLabel->setText(m_title);
    m_titleLabel->setFont(style.titleTextFont());
    m_titleLabel->setStyleSheet(QStringLiteral("QLabel { background: %1; color: %2; }")
                                    .arg(css(style.titleLabelColor()), css(style.titleTextColor())));
    m_titleLabel->setVisible(!style.hiddenTitleLabel());
    const int line = lineThickness(0.5);
    m_titleLine->setGeometry(0, m_titleBarView->height() - line, qRound(width), line);
    fill(m_titleLine, style.titleLineColor());
    m_titleLine->setVisible(!style.hiddenTitleLine());
}

void ZIQBRBaseView::animate(qreal maskOpacity, int panelY, int durationMs, std::function<void()> finished)
{
    const quint64 generation = ++m_animationGeneration;
    m_animation->stop();
    m_animation->clear();
    auto *fade = new QPropertyAnimation(m_maskEffect, "opacity", m_animation);
    fade->setDuration(durationMs);
    fade->setEndValue(maskOpacity);
    auto *slide = new QPropertyAnimation(m_alertView, "pos", m_animation);
    slide->setDuration(durationMs);
    slide->setEasingCurve(QEasingCurve::OutCubic);
    slide->setEndValue(QPoint(0, panelY));
    m_animation->addAnimation(fade);
    m_animation->addAnimation(slide);
    m_animation->start();
    // The main queue lands the end state, so that a manual clock in tests reaches it too.
    platform::MainQueue::after(durationMs, this, [this, generation, maskOpacity, panelY, finished] {
        if (generation != m_animationGeneration)
            return;
        m_animation->stop();
        m_maskEffect->setOpacity(maskOpacity);
        m_alertView->move(0, panelY);
        if (finished)
            finished();
    });
}

void ZIQBRBaseView::onCancel()
{
    if (m_dismissing)
        return;
    dismiss();
    if (m_cancelBlock)
        m_cancelBlock();
    Q_EMIT cancelled();
}

void ZIQBRBaseView::onDone()
{
    if (m_dismissing)
        return;
    dismiss();
    if (m_doneBlock)
        m_doneBlock();
}
