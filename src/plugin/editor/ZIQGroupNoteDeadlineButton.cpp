#include "plugin/editor/ZIQGroupNoteDeadlineButton.h"

#include "plugin/editor/ZIQGroupNoteEditorStyle.h"
#include "plugin/picker/ZIQBRDateHelpers.h"

#include "kit/common/ZIQTheme.h"
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"

using Style = ZIQGroupNoteEditorStyle;

namespace {

constexpr int FontSize = 12;
constexpr qreal TitlePadding = 36;

} // namespace

ZIQGroupNoteDeadlineButton::ZIQGroupNoteDeadlineButton(QWidget *parent)
    : QPushButton(parent)
{
    setObjectName(QStringLiteral("deadlineButton"));
    // A tap on a phone's button leaves the focus (and the keyboard) where it was; the keyboard's
    // Tab still reaches it.
    setFocusPolicy(Qt::TabFocus);
    setFont(platform::SystemFont::regular(FontSize));
    ZIQTheme::bind(this, [this] { applyTheme(); });
}

void ZIQGroupNoteDeadlineButton::applyTheme()
{
    Style::setTextColor(this, Style::color("group_note_create_deadline_text_color", "#000000"));
    setStyleSheet(
        QStringLiteral("QPushButton { background-color: %1; border: none; border-radius: 12px; padding: 0px; }")
            .arg(Style::color("group_note_create_deadline_bg_color", "#F2F7FF").name(QColor::HexArgb)));
}

void ZIQGroupNoteDeadlineButton::refreshWithInfo(const ZIQGroupNoteInfo &info)
{
    const QString title = deadlineButtonTitle(info);
    setText(title);
    setAccessibleName(title);
    m_buttonWidth = deadlineButtonWidth(title);
    resize(qRound(m_buttonWidth), Height);
}

QString ZIQGroupNoteDeadlineButton::deadlineButtonTitle(const ZIQGroupNoteInfo &info)
{
    if (info.isExceedDeadline())
        return Style::localized("ZIQGroupNoteHasStopped");
    return Style::localized("ZIQGroupNoteDeadline")
        .arg(dateStringFromTimestamp(info.setting()->deadlineTimestampInMS()));
}

float ZIQGroupNoteDeadlineButton::deadlineButtonWidth(const QString &title)
{
    const QSizeF limit(platform::TextMeasure::Unbounded, Height);
    const QSizeF size = platform::TextMeasure::size(title, platform::SystemFont::bold(FontSize), limit);
    return static_cast<float>(size.width() + TitlePadding);
}

QString ZIQGroupNoteDeadlineButton::dateStringFromTimestamp(double timestampInMS)
{
    if (!(timestampInMS > 0))
        return QString();
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(timestampInMS), Qt::UTC);
    return ZIQ_br_stringFromDate(date, QStringLiteral("YYYY-MM-dd HH:mm"));
}
