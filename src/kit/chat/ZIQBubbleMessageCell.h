// A message drawn as a bubble beside its sender's picture: incoming on the left with the
// sender's name above it in group chats, outgoing on the right with its sending state beside
// it. The cell's own content goes into container(), which the chat sizes to the measured
// content plus the data's messageContainerAppendSize (the room of the reaction strip, which
// sits at the container's bottom). The bubble is drawn behind the container.
#pragma once

#include "kit/chat/ZIQBubbleMessageCellData.h"
#include "kit/chat/ZIQMessageCell.h"

#include <QVariant>

class QLabel;
class ZIQBubbleView;
class ZIQMessageStatusView;
class ZIQReactionStrip;

namespace platform {
class ImageView;
}

/// The value attached to a view (a map, for the container: "ZIQReactPreview" holds the reaction
/// strip while it shows).
QVariant ziq_extValueObj(const QWidget *view);
void ziq_setExtValueObj(QWidget *view, const QVariant &value);

class ZIQBubbleMessageCell : public ZIQMessageCell
{
    Q_OBJECT

public:
    static constexpr qreal RowPadding = 8;
    static constexpr qreal AvatarSize = 40;
    static constexpr qreal AvatarMargin = 12;
    static constexpr qreal AvatarSpacing = 8;
    static constexpr qreal NameHeight = 18;
    static constexpr qreal StripInset = 8;
    static inline const QString reactPreviewKey = QStringLiteral("ZIQReactPreview");

    Q_INVOKABLE explicit ZIQBubbleMessageCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    /// The widest a bubble grows: 70% of the screen.
    static qreal maxBubbleWidth();
    /// The room the reaction strip of `reactions` adds to a container; empty without reactions.
    static QSizeF reactionAppendSize(const ZIQMessageReactions &reactions);
    /// The container's size for a measured content size.
    static QSizeF containerSize(const ZIQBubbleMessageCellData &data, const QSizeF &contentSize);
    /// Whether the sender's name shows above the bubble: incoming messages of group chats.
    static bool showsSenderName(const ZIQMessageCellData &data);
    /// The row's height for a measured content size.
    static qreal rowHeight(const ZIQBubbleMessageCellData &data, const QSizeF &contentSize);

    QWidget *container() const { return m_container; }
    ZIQBubbleView *bubbleView() const { return m_bubbleView; }
    platform::ImageView *avatarView() const { return m_avatarView; }
    QLabel *nameLabel() const { return m_nameLabel; }
    ZIQMessageStatusView *statusView() const { return m_statusView; }
    ZIQReactionStrip *reactionStrip() const { return m_reactionStrip; }

    void fillWithData(const ZIQMessageCellDataPtr &data) override;

Q_SIGNALS:
    /// The failed "!" beside the message was tapped.
    void resendRequested(const QString &msgID);
    /// A reaction chip under the message was tapped.
    void reactionToggled(const QString &msgID, const QString &emoji);

protected:
    void resizeEvent(QResizeEvent *event) override;
    QRect reactionAnchor() const override;
    void applyTheme() override;
    /// Places the avatar, name, container, bubble, status and strip for the current data.
    virtual void layoutMessage();
    std::shared_ptr<ZIQBubbleMessageCellData> bubbleData() const;

private:
    void fillReactions(const ZIQBubbleMessageCellData &data);

    platform::ImageView *m_avatarView;
    QLabel *m_nameLabel;
    ZIQBubbleView *m_bubbleView;
    QWidget *m_container;
    ZIQMessageStatusView *m_statusView;
    ZIQReactionStrip *m_reactionStrip;
};
