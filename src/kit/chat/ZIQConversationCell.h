// One row of the conversation list: the chat's avatar, its name, the last message on one line,
// when it was said and how many messages wait unread.
#pragma once

#include "kit/chat/ZIQConversationCellData.h"
#include "platform/TableViewCell.h"

class QLabel;

namespace platform {
class ImageView;
}

class ZIQConversationCell : public platform::TableViewCell
{
    Q_OBJECT

public:
    static constexpr qreal RowHeight = 72;
    static constexpr int AvatarSize = 48;

    explicit ZIQConversationCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    void fill(const ZIQConversationCellData &data);
    void prepareForReuse() override;

    /// "HH:mm" for a moment of the same local day as `nowMs`, else "MM/dd"; empty for 0.
    static QString timeText(double timeMs, double nowMs);
    /// The badge's text: nothing for no unread message, "99+" above 99.
    static QString badgeText(int unreadCount);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void applyTheme();
    void layoutContent();

    platform::ImageView *m_avatar;
    QLabel *m_nameLabel;
    QLabel *m_messageLabel;
    QLabel *m_timeLabel;
    QLabel *m_badge;
    QString m_name;
    QString m_message;
};
