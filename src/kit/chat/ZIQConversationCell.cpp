#include "kit/chat/ZIQConversationCell.h"

#include "kit/common/ZIQConfig.h"
#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/CornerMask.h"
#include "platform/ImageView.h"
#include "platform/MainQueue.h"
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"

#include <QLabel>
#include <QUrl>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

namespace {

constexpr int Margin = 16;
constexpr int Gap = 12;
constexpr int BadgeHeight = 18;
constexpr int BadgeMinWidth = 18;
constexpr int BadgePadding = 6;

QString formatDate(double ms, const char *pattern)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat format(icu::UnicodeString(pattern), icu::Locale::getRoot(), status);
    if (U_FAILURE(status))
        return {};
    icu::UnicodeString text;
    format.format(ms, text);
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

QColor themeColor(const char *key, const char *fallback)
{
    return ZIQTheme::dynamicColor(QString::fromLatin1(key), ZIQThemeModuleCommon, QString::fromLatin1(fallback));
}

// A style sheet rather than a palette: the table hands its palette down to the rows it adopts,
// which would paint every label in the table's text colour.
void setTextColor(QLabel *label, const QColor &color)
{
    label->setStyleSheet(QStringLiteral("color: %1;").arg(color.name(QColor::HexArgb)));
}

} // namespace

ZIQConversationCell::ZIQConversationCell(const QString &reuseIdentifier, QWidget *parent)
    : TableViewCell(reuseIdentifier, parent)
    , m_avatar(new platform::ImageView(contentView()))
    , m_nameLabel(new QLabel(contentView()))
    , m_messageLabel(new QLabel(contentView()))
    , m_timeLabel(new QLabel(contentView()))
    , m_badge(new QLabel(contentView()))
{
    setSelectionStyle(SelectionStyle::Gray);
    m_avatar->setObjectName(QStringLiteral("conversationAvatar"));
    m_avatar->setContentMode(platform::ImageView::ContentMode::ScaleAspectFill);
    platform::CornerMask::apply(m_avatar, platform::Corner::All, AvatarSize / 2.0);
    m_nameLabel->setObjectName(QStringLiteral("conversationName"));
    m_nameLabel->setFont(platform::SystemFont::font(16, QFont::Medium));
    m_messageLabel->setObjectName(QStringLiteral("conversationLastMessage"));
    m_messageLabel->setFont(platform::SystemFont::regular(14));
    m_timeLabel->setObjectName(QStringLiteral("conversationTime"));
    m_timeLabel->setFont(platform::SystemFont::regular(12));
    m_timeLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_badge->setObjectName(QStringLiteral("conversationUnreadBadge"));
    m_badge->setFont(platform::SystemFont::font(12, QFont::DemiBold));
    m_badge->setAlignment(Qt::AlignCenter);
    m_badge->hide();
    ZIQTheme::bind(this, [this] { applyTheme(); });
}

void ZIQConversationCell::fill(const ZIQConversationCellData &data)
{
    m_name = data.title;
    m_message = data.subTitle;
    const QIcon placeholder = ZIQConfig::defaultConfig().defaultAvatarImage();
    m_avatar->setImageWithURL(QUrl(data.faceURL), placeholder.pixmap(AvatarSize * 3).toImage());
    m_timeLabel->setText(timeText(data.time, platform::MainQueue::now()));
    m_badge->setText(badgeText(data.unreadCount));
    m_badge->setVisible(data.unreadCount > 0);
    layoutContent();
}

void ZIQConversationCell::prepareForReuse()
{
    TableViewCell::prepareForReuse();
    m_name.clear();
    m_message.clear();
    m_badge->hide();
}

QString ZIQConversationCell::timeText(double timeMs, double nowMs)
{
    if (timeMs <= 0)
        return {};
    const bool sameDay = formatDate(timeMs, "yyyyMMdd") == formatDate(nowMs, "yyyyMMdd");
    return formatDate(timeMs, sameDay ? "HH:mm" : "MM/dd");
}

QString ZIQConversationCell::badgeText(int unreadCount)
{
    if (unreadCount <= 0)
        return {};
    return unreadCount > 99 ? QStringLiteral("99+") : QString::number(unreadCount);
}

void ZIQConversationCell::resizeEvent(QResizeEvent *event)
{
    TableViewCell::resizeEvent(event);
    layoutContent();
}

void ZIQConversationCell::applyTheme()
{
    setBackgroundColor(themeColor("conversation_cell_bg_color", "#FFFFFF"));
    setSeparatorColor(themeColor("conversation_cell_separator_color", "#E5E5EA"));
    setTextColor(m_nameLabel, themeColor("conversation_cell_title_color", "#000000"));
    setTextColor(m_messageLabel, themeColor("conversation_cell_subtitle_color", "#8E8E93"));
    setTextColor(m_timeLabel, themeColor("conversation_cell_time_color", "#8E8E93"));
    const QColor badge = themeColor("conversation_cell_badge_color", "#FF3B30");
    const QColor badgeText = themeColor("conversation_cell_badge_text_color", "#FFFFFF");
    m_badge->setStyleSheet(QStringLiteral("background-color: %1; color: %2; border-radius: %3px;")
                               .arg(badge.name(QColor::HexArgb), badgeText.name(QColor::HexArgb))
                               .arg(BadgeHeight / 2));
}

void ZIQConversationCell::layoutContent()
{
    const QRect bounds = contentView()->rect();
    const int middle = bounds.height() / 2;
    m_avatar->setGeometry(Margin, middle - AvatarSize / 2, AvatarSize, AvatarSize);
    const int textLeft = Margin + AvatarSize + Gap;
    const int right = bounds.width() - Margin;

    const int timeWidth = qCeil(platform::TextMeasure::singleLineSize(m_timeLabel->text(), m_timeLabel->font()).width());
    const int lineHeight = 22;
    // A chat without messages yet has only its name: it sits level with the face.
    const int nameTop = m_message.isEmpty() ? middle - lineHeight / 2 : middle - lineHeight;
    m_timeLabel->setGeometry(right - timeWidth, nameTop, timeWidth, lineHeight);
    const int nameWidth = qMax(0, right - timeWidth - Gap - textLeft);
    m_nameLabel->setGeometry(textLeft, nameTop, nameWidth, lineHeight);
    m_nameLabel->setText(m_nameLabel->fontMetrics().elidedText(m_name, Qt::ElideRight, nameWidth));

    int messageRight = right;
    if (!m_badge->isHidden()) {
        const qreal textWidth = platform::TextMeasure::singleLineSize(m_badge->text(), m_badge->font()).width();
        const int badgeWidth = qMax(BadgeMinWidth, qCeil(textWidth) + 2 * BadgePadding);
        m_badge->setGeometry(right - badgeWidth, middle + 2 + (lineHeight - BadgeHeight) / 2, badgeWidth, BadgeHeight);
        messageRight = right - badgeWidth - Gap;
    }
    const int messageWidth = qMax(0, messageRight - textLeft);
    m_messageLabel->setGeometry(textLeft, middle + 2, messageWidth, lineHeight);
    m_messageLabel->setText(
        m_messageLabel->fontMetrics().elidedText(m_message.simplified(), Qt::ElideRight, messageWidth));
}
