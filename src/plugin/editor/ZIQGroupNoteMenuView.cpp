#include "plugin/editor/ZIQGroupNoteMenuView.h"

#include "plugin/editor/ZIQGroupNoteEditorStyle.h"

#include "kit/common/ZIQTheme.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"

#include <QPushButton>

using Style = ZIQGroupNoteEditorStyle;

namespace {

constexpr int TabFontSize = 16;
constexpr QSize UnderlineSize(36, 2);

QPushButton *makeTab(const QString &name, const char *titleKey, QWidget *parent)
{
    auto *button = new QPushButton(Style::localized(titleKey), parent);
    button->setObjectName(name);
    button->setFocusPolicy(Qt::TabFocus);
    button->setStyleSheet(QStringLiteral("QPushButton { border: none; background: transparent; }"));
    return button;
}

QWidget *makeLine(const QString &name, QWidget *parent)
{
    auto *line = new QWidget(parent);
    line->setObjectName(name);
    return line;
}

} // namespace

ZIQGroupNoteMenuView::ZIQGroupNoteMenuView(QWidget *parent)
    : QWidget(parent)
    , m_noteButton(makeTab(QStringLiteral("noteButton"), "ZIQGroupNote", this))
    , m_noteLine(makeLine(QStringLiteral("noteLine"), this))
    , m_settingButton(makeTab(QStringLiteral("settingButton"), "ZIQGroupNoteSettings", this))
    , m_settingLine(makeLine(QStringLiteral("settingLine"), this))
    , m_bottomLine(makeLine(QStringLiteral("bottomLine"), this))
{
    setObjectName(QStringLiteral("groupNoteMenuView"));
    // The rule runs under the underlines, which stand on it.
    m_noteLine->raise();
    m_settingLine->raise();
    connect(m_noteButton, &QPushButton::clicked, this, [this] { tabClicked(true); });
    connect(m_settingButton, &QPushButton::clicked, this, [this] { tabClicked(false); });
    ZIQTheme::bind(this, [this] { applyTheme(); });
}

void ZIQGroupNoteMenuView::applyTheme()
{
    const QColor underline = Style::color("group_note_create_tab_line_color", "#147AFF");
    Style::setBackgroundColor(m_noteLine, underline);
    Style::setBackgroundColor(m_settingLine, underline);
    Style::setBackgroundColor(m_bottomLine, Style::color("group_note_create_tab_bottom_line_color", "#EEEEEE"));
    highlight(m_noteHighlighted);
}

void ZIQGroupNoteMenuView::highlight(bool note)
{
    m_noteHighlighted = note;
    const QColor highlighted = Style::color("group_note_create_tab_highlight_text_color", "#000000");
    const QColor normal = Style::color("group_note_create_tab_text_color", "#666666");
    const auto style = [&](QPushButton *button, QWidget *line, bool on) {
        line->setHidden(!on);
        button->setFont(on ? platform::SystemFont::bold(TabFontSize) : platform::SystemFont::regular(TabFontSize));
        Style::setTextColor(button, on ? highlighted : normal);
    };
    style(m_noteButton, m_noteLine, note);
    style(m_settingButton, m_settingLine, !note);
}

void ZIQGroupNoteMenuView::tabClicked(bool note)
{
    highlight(note);
    layoutMenu();
    const std::function<void()> &block = note ? m_noteClickedBlock : m_settingClickedBlock;
    if (block)
        block();
}

void ZIQGroupNoteMenuView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutMenu();
}

void ZIQGroupNoteMenuView::layoutMenu()
{
    // Each tab is half the phone's width, whatever the bar's own width.
    const int tabWidth = qRound(platform::Screen::width() / 2);
    m_noteButton->setGeometry(0, 0, tabWidth, ButtonHeight);
    m_settingButton->setGeometry(tabWidth, 0, tabWidth, ButtonHeight);
    const auto placeUnderline = [](QWidget *line, const QPushButton *button) {
        const QRect tab = button->geometry();
        line->setGeometry(tab.x() + (tab.width() - UnderlineSize.width()) / 2, tab.y() + tab.height(),
            UnderlineSize.width(), UnderlineSize.height());
    };
    placeUnderline(m_noteLine, m_noteButton);
    placeUnderline(m_settingLine, m_settingButton);
    m_bottomLine->setGeometry(0, ButtonHeight + 1, width(), 1);
}
