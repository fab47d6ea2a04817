#include "kit/chat/ZIQSystemMessageCell.h"

#include "kit/chat/ZIQChatColors.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"

#include <QLabel>
#include <cmath>

namespace {
qreal maxLineWidth()
{
    return platform::Screen::width() * 0.8;
}
} // namespace

ZIQSystemMessageCell::ZIQSystemMessageCell(const QString &reuseIdentifier, QWidget *parent)
    : ZIQMessageCell(reuseIdentifier, parent)
    , m_textLabel(new QLabel(contentView()))
{
    m_textLabel->setObjectName(QStringLiteral("systemTextLabel"));
    m_textLabel->setFont(platform::SystemFont::regular(FontSize));
    m_textLabel->setTextFormat(Qt::RichText);
    m_textLabel->setWordWrap(true);
    m_textLabel->setAlignment(Qt::AlignCenter);
    m_textLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    ZIQTheme::bind(this, [this] { applyTheme(); });
}

QSizeF ZIQSystemMessageCell::getContentSize(ZIQMessageCellData *data)
{
    const auto *system = qobject_cast<const ZIQSystemMessageCellData *>(data);
    const QString text = system ? system->content() : QString();
    const QSizeF size = platform::TextMeasure::size(text, platform::SystemFont::regular(FontSize),
        QSizeF(std::max<qreal>(maxLineWidth() - 2 * HorizontalInset, 1), platform::TextMeasure::Unbounded),
        platform::TextMeasure::UsesLineFragmentOrigin | platform::TextMeasure::UsesFontLeading);
    return { std::ceil(size.width()) + 2 * HorizontalInset, std::ceil(size.height()) + 2 * VerticalInset };
}

void ZIQSystemMessageCell::fillWithData(const ZIQMessageCellDataPtr &data)
{
    ZIQMessageCell::fillWithData(data);
    const auto *system = qobject_cast<const ZIQSystemMessageCellData *>(data.get());
    m_textLabel->setText(system ? system->attributedString().toHtml() : QString());
    layoutLine();
}

void ZIQSystemMessageCell::resizeEvent(QResizeEvent *event)
{
    ZIQMessageCell::resizeEvent(event);
    layoutLine();
}

void ZIQSystemMessageCell::layoutLine()
{
    const QSizeF size = contentSize().isValid() ? contentSize() : QSizeF(maxLineWidth(), 0);
    const qreal x = (contentView()->width() - size.width()) / 2;
    m_textLabel->setGeometry(QRectF(QPointF(x, RowPadding), size).toAlignedRect());
}

QRect ZIQSystemMessageCell::reactionAnchor() const
{
    return m_textLabel->geometry().translated(contentView()->pos());
}

void ZIQSystemMessageCell::applyTheme()
{
    ZIQChatColors::setTextColor(m_textLabel, ZIQChatColors::secondaryText());
}
