#include "kit/chat/ZIQTextMessageCell.h"

#include "kit/chat/ZIQChatColors.h"
#include "kit/chat/ZIQTextMessageCellData.h"
#include "kit/chat/ZIQUnsupportedMessageCellData.h"
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"

#include <QLabel>
#include <cmath>

ZIQTextMessageCell::ZIQTextMessageCell(const QString &reuseIdentifier, QWidget *parent)
    : ZIQBubbleMessageCell(reuseIdentifier, parent)
    , m_textLabel(new QLabel(container()))
{
    m_textLabel->setObjectName(QStringLiteral("messageTextLabel"));
    m_textLabel->setFont(platform::SystemFont::regular(FontSize));
    m_textLabel->setWordWrap(true);
    m_textLabel->setTextFormat(Qt::PlainText);
    m_textLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_textLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    applyTheme();
}

QString ZIQTextMessageCell::textOf(const ZIQMessageCellData *data)
{
    if (const auto *text = qobject_cast<const ZIQTextMessageCellData *>(data))
        return text->content();
    if (const auto *unsupported = qobject_cast<const ZIQUnsupportedMessageCellData *>(data))
        return unsupported->content();
    return {};
}

QSizeF ZIQTextMessageCell::sizeOfText(const QString &text)
{
    const qreal limit = maxBubbleWidth() - 2 * HorizontalInset;
    const QSizeF size = platform::TextMeasure::size(text, platform::SystemFont::regular(FontSize),
        QSizeF(std::max<qreal>(limit, 1), platform::TextMeasure::Unbounded),
        platform::TextMeasure::UsesLineFragmentOrigin | platform::TextMeasure::UsesFontLeading);
    return { std::ceil(size.width()), std::ceil(size.height()) };
}

QSizeF ZIQTextMessageCell::getContentSize(ZIQMessageCellData *data)
{
    const QSizeF text = sizeOfText(textOf(data));
    return { text.width() + 2 * HorizontalInset, text.height() + 2 * VerticalInset };
}

void ZIQTextMessageCell::fillWithData(const ZIQMessageCellDataPtr &data)
{
    m_textLabel->setText(textOf(data.get()));
    ZIQBubbleMessageCell::fillWithData(data);
}

void ZIQTextMessageCell::layoutMessage()
{
    ZIQBubbleMessageCell::layoutMessage();
    const QSizeF text = contentSize().isValid() ? contentSize() - QSizeF(2 * HorizontalInset, 2 * VerticalInset)
                                                : QSizeF();
    m_textLabel->setGeometry(QRectF(QPointF(HorizontalInset, VerticalInset), text).toAlignedRect());
}

void ZIQTextMessageCell::applyTheme()
{
    ZIQBubbleMessageCell::applyTheme();
    const bool unsupported = qobject_cast<const ZIQUnsupportedMessageCellData *>(messageData().get());
    ZIQChatColors::setTextColor(m_textLabel, unsupported ? ZIQChatColors::secondaryText() : ZIQChatColors::text());
}
