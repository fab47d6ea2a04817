#include "kit/chat/ZIQChatMorePanel.h"

#include "kit/chat/ZIQChatColors.h"
#include "kit/chat/ZIQChatMoreItemView.h"
#include "kit/common/ZIQGlobalization.h"
#include "platform/SystemFont.h"

#include <QLabel>

namespace {
constexpr int PanelInset = 16;
} // namespace

ZIQChatMorePanel::ZIQChatMorePanel(QWidget *parent)
    : QWidget(parent)
    , m_emptyLabel(new QLabel(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQKitChatMoreEmpty")), this))
{
    setObjectName(QStringLiteral("morePanel"));
    setAutoFillBackground(true);
    m_emptyLabel->setObjectName(QStringLiteral("moreEmptyLabel"));
    m_emptyLabel->setFont(platform::SystemFont::regular(13));
    m_emptyLabel->setAlignment(Qt::AlignCenter);
    ZIQTheme::bind(this, [this] {
        QPalette palette = this->palette();
        palette.setColor(QPalette::Window, ZIQChatColors::inputBar());
        setPalette(palette);
        ZIQChatColors::setTextColor(m_emptyLabel, ZIQChatColors::secondaryText());
    });
}

void ZIQChatMorePanel::setItems(const QList<ZIQExtensionInfo> &items, const QVariantMap &parameters)
{
    // Tiles go later: this may run from a tile's own tap.
    for (QWidget *view : std::as_const(m_itemViews)) {
        view->hide();
        view->deleteLater();
    }
    m_itemViews.clear();
    m_items = items;
    m_parameters = parameters;
    for (int index = 0; index < items.size(); ++index) {
        auto *view = new ZIQChatMoreItemView(items[index].icon, items[index].text, this);
        view->setObjectName(QStringLiteral("moreItem_%1").arg(index));
        connect(view, &QAbstractButton::clicked, this, [this, index] {
            // The item may replace the panel's items (a reset), so run a copy of its action.
            const auto onClicked = m_items.value(index).onClicked;
            const QVariantMap parameters = m_parameters;
            if (onClicked)
                onClicked(parameters);
        });
        view->show();
        m_itemViews.append(view);
    }
    m_emptyLabel->setVisible(items.isEmpty());
    layoutItems();
}

void ZIQChatMorePanel::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutItems();
}

void ZIQChatMorePanel::layoutItems()
{
    const qreal columnWidth = (width() - 2.0 * PanelInset) / Columns;
    for (int index = 0; index < m_itemViews.size(); ++index) {
        const int row = index / Columns;
        const int column = index % Columns;
        m_itemViews[index]->setGeometry(
            QRectF(PanelInset + column * columnWidth, PanelInset + row * ItemHeight, columnWidth, ItemHeight)
                .toRect());
    }
    m_emptyLabel->setGeometry(0, 0, width(), PanelHeight);
}
