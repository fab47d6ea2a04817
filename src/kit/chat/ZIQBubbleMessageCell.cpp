#include "kit/chat/ZIQBubbleMessageCell.h"

#include "kit/chat/ZIQBubbleView.h"
#include "kit/chat/ZIQChatColors.h"
#include "kit/chat/ZIQMessageStatusView.h"
#include "kit/chat/ZIQReactionStrip.h"
#include "kit/common/ZIQConfig.h"
#include "platform/CornerMask.h"
#include "platform/ImageView.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"

#include <QLabel>
#include <QUrl>
#include <cmath>

namespace {
const char *const extValueProperty = "ziq_extValueObj";
constexpr int NameFontSize = 12;
} // namespace

QVariant ziq_extValueObj(const QWidget *view)
{
    return view ? view->property(extValueProperty) : QVariant();
}

void ziq_setExtValueObj(QWidget *view, const QVariant &value)
{
    if (view)
        view->setProperty(extValueProperty, value);
}

ZIQBubbleMessageCell::ZIQBubbleMessageCell(const QString &reuseIdentifier, QWidget *parent)
    : ZIQMessageCell(reuseIdentifier, parent)
    , m_avatarView(new platform::ImageView(contentView()))
    , m_nameLabel(new QLabel(contentView()))
    , m_bubbleView(new ZIQBubbleView(contentView()))
    , m_container(new QWidget(contentView()))
    , m_statusView(new ZIQMessageStatusView(contentView()))
    , m_reactionStrip(new ZIQReactionStrip(m_container))
{
    m_avatarView->setObjectName(QStringLiteral("avatarView"));
    m_avatarView->setContentMode(platform::ImageView::ContentMode::ScaleAspectFill);
    platform::CornerMask::apply(m_avatarView, platform::Corner::All, 6);
    m_nameLabel->setObjectName(QStringLiteral("senderNameLabel"));
    m_nameLabel->setFont(platform::SystemFont::regular(NameFontSize));
    m_bubbleView->setObjectName(QStringLiteral("bubbleView"));
    m_container->setObjectName(QStringLiteral("container"));
    m_reactionStrip->hide();
    connect(m_statusView, &QAbstractButton::clicked, this, [this] {
        if (messageData())
            Q_EMIT resendRequested(messageData()->msgID());
    });
    connect(m_reactionStrip, &ZIQReactionStrip::chipClicked, this, [this](const QString &emoji) {
        if (messageData())
            Q_EMIT reactionToggled(messageData()->msgID(), emoji);
    });
    ZIQTheme::bind(this, [this] { applyTheme(); });
}

qreal ZIQBubbleMessageCell::maxBubbleWidth()
{
    return platform::Screen::width() * 0.7;
}

QSizeF ZIQBubbleMessageCell::reactionAppendSize(const ZIQMessageReactions &reactions)
{
    if (reactions.isEmpty())
        return { 0, 0 };
    const QSizeF strip = ZIQReactionStrip::sizeFor(reactions, maxBubbleWidth() - 2 * StripInset);
    return { strip.width() + 2 * StripInset, strip.height() + StripInset };
}

QSizeF ZIQBubbleMessageCell::containerSize(const ZIQBubbleMessageCellData &data, const QSizeF &contentSize)
{
    const QSizeF content = contentSize.isValid() ? contentSize : QSizeF(0, 0);
    const QSizeF append = data.messageContainerAppendSize().isValid() ? data.messageContainerAppendSize() : QSizeF(0, 0);
    return { std::ceil(std::max(content.width(), append.width())), std::ceil(content.height() + append.height()) };
}

bool ZIQBubbleMessageCell::showsSenderName(const ZIQMessageCellData &data)
{
    return data.direction() == ZIQMessageDirection::Incoming && data.innerMessage()
        && !data.innerMessage()->groupID().isEmpty();
}

qreal ZIQBubbleMessageCell::rowHeight(const ZIQBubbleMessageCellData &data, const QSizeF &contentSize)
{
    const qreal name = showsSenderName(data) ? NameHeight : 0;
    return std::max(name + containerSize(data, contentSize).height(), AvatarSize) + 2 * RowPadding;
}

std::shared_ptr<ZIQBubbleMessageCellData> ZIQBubbleMessageCell::bubbleData() const
{
    return std::dynamic_pointer_cast<ZIQBubbleMessageCellData>(messageData());
}

void ZIQBubbleMessageCell::fillWithData(const ZIQMessageCellDataPtr &data)
{
    ZIQMessageCell::fillWithData(data);
    const V2VORMessagePtr message = data ? data->innerMessage() : nullptr;
    const QImage placeholder = ZIQConfig::defaultConfig().defaultAvatarImage().pixmap(int(AvatarSize)).toImage();
    m_avatarView->setImageWithURL(message ? QUrl(message->faceURL()) : QUrl(), placeholder);
    m_nameLabel->setVisible(data && showsSenderName(*data));
    if (message)
        m_nameLabel->setText(message->nickName().isEmpty() ? message->sender() : message->nickName());
    const bool outgoing = data && data->direction() == ZIQMessageDirection::Outgoing;
    m_bubbleView->setOutgoing(outgoing);
    m_statusView->setStatus(outgoing ? data->status() : ZIQMessageStatus::Sent);
    if (const auto bubble = bubbleData())
        fillReactions(*bubble);
    applyTheme();
    layoutMessage();
}

void ZIQBubbleMessageCell::fillReactions(const ZIQBubbleMessageCellData &data)
{
    const bool shown = !data.reactions().isEmpty();
    m_reactionStrip->setReactions(data.reactions(), currentUserID(), maxBubbleWidth() - 2 * StripInset);
    m_reactionStrip->setVisible(shown);
    QVariantMap extValue = ziq_extValueObj(m_container).toMap();
    if (shown)
        extValue.insert(reactPreviewKey, QVariant::fromValue<QWidget *>(m_reactionStrip));
    else
        extValue.remove(reactPreviewKey);
    ziq_setExtValueObj(m_container, extValue);
}

void ZIQBubbleMessageCell::resizeEvent(QResizeEvent *event)
{
    ZIQMessageCell::resizeEvent(event);
    layoutMessage();
}

void ZIQBubbleMessageCell::layoutMessage()
{
    const auto data = bubbleData();
    if (!data)
        return;
    const bool outgoing = data->direction() == ZIQMessageDirection::Outgoing;
    const qreal width = contentView()->width();
    const QSizeF box = containerSize(*data, contentSize());
    const qreal avatarX = outgoing ? width - AvatarMargin - AvatarSize : AvatarMargin;
    m_avatarView->setGeometry(QRectF(avatarX, RowPadding, AvatarSize, AvatarSize).toRect());
    const qreal nameHeight = showsSenderName(*data) ? NameHeight : 0;
    const qreal innerEdge = AvatarMargin + AvatarSize + AvatarSpacing;
    const qreal x = outgoing ? width - innerEdge - box.width() : innerEdge;
    const QRect container(QPoint(qRound(x), qRound(RowPadding + nameHeight)), box.toSize());
    m_nameLabel->setGeometry(QRectF(innerEdge, RowPadding - 2, maxBubbleWidth(), NameHeight).toRect());
    m_container->setGeometry(container);
    m_bubbleView->setGeometry(container);
    const int status = ZIQMessageStatusView::Size;
    m_statusView->move(container.left() - 6 - status, container.center().y() - status / 2);
    const QSizeF strip = ZIQReactionStrip::sizeFor(data->reactions(), maxBubbleWidth() - 2 * StripInset);
    const qreal contentHeight = box.height() - strip.height() - (strip.isEmpty() ? 0 : StripInset);
    m_reactionStrip->setGeometry(QRectF(QPointF(StripInset, contentHeight), strip).toAlignedRect());
    m_reactionStrip->raise();
}

QRect ZIQBubbleMessageCell::reactionAnchor() const
{
    return m_container->geometry().translated(contentView()->pos());
}

void ZIQBubbleMessageCell::applyTheme()
{
    const bool outgoing = messageData() && messageData()->direction() == ZIQMessageDirection::Outgoing;
    m_bubbleView->setColor(outgoing ? ZIQChatColors::outgoingBubble() : ZIQChatColors::incomingBubble());
    ZIQChatColors::setTextColor(m_nameLabel, ZIQChatColors::secondaryText());
}
