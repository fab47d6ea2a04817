#include "plugin/editor/ZIQGroupNoteTitleInputView.h"

#include "plugin/editor/ZIQGroupNoteEditorStyle.h"

#include "kit/common/ZIQTheme.h"
#include "platform/SystemFont.h"
#include "platform/TextField.h"

#include <QPainter>

using Style = ZIQGroupNoteEditorStyle;

namespace {

constexpr int FieldInset = 16;
constexpr int FieldTop = 12;
constexpr int FieldHeight = 22;
constexpr int FieldGap = 12;
constexpr qreal CornerRadius = 8;

} // namespace

ZIQGroupNoteTitleInputView::ZIQGroupNoteTitleInputView(QWidget *parent)
    : QWidget(parent)
    , m_titleTextField(Style::textField(QStringLiteral("titleTextField"), 18, "ZIQGroupNoteTitleHint", this))
    , m_descTextField(Style::textField(QStringLiteral("descTextField"), 12, "ZIQGroupNoteDescriptionHint", this))
{
    setObjectName(QStringLiteral("titleInputView"));
    ZIQTheme::bind(this, [this] { applyTheme(); });
}

void ZIQGroupNoteTitleInputView::applyTheme()
{
    m_titleTextField->setTextColor(Style::color("group_note_create_title_text_color", "#333333"));
    m_descTextField->setTextColor(Style::color("group_note_create_desc_text_color", "#999999"));
    update();
}

void ZIQGroupNoteTitleInputView::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    // Drawn by hand: a style sheet for the frame would restyle the fields inside it as well.
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Style::color("group_note_create_title_border_color", "#EEEEEE"), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), CornerRadius, CornerRadius);
}

void ZIQGroupNoteTitleInputView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    const int fieldWidth = width() - 2 * FieldInset;
    m_titleTextField->setGeometry(FieldInset, FieldTop, fieldWidth, FieldHeight);
    m_descTextField->setGeometry(FieldInset, FieldTop + FieldHeight + FieldGap, fieldWidth, FieldHeight);
}
