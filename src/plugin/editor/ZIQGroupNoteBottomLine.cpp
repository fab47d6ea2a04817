#include "plugin/editor/ZIQGroupNoteBottomLine.h"

#include "kit/common/ZIQTheme.h"
#include "plugin/service/ZIQGroupNoteDefines.h"

#include <QEvent>
#include <QPainter>

ZIQGroupNoteBottomLine::ZIQGroupNoteBottomLine(QWidget *row)
    : QWidget(row)
{
    setObjectName(QStringLiteral("bottomLine"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    ZIQTheme::bind(this, [this] {
        m_color = ZIQTheme::dynamicColor(
            QStringLiteral("group_note_create_title_border_color"), ZIQGroupNoteThemeModule, QStringLiteral("#EEEEEE"));
        update();
    });
    row->installEventFilter(this);
    place();
}

bool ZIQGroupNoteBottomLine::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parent() && event->type() == QEvent::Resize)
        place();
    return QWidget::eventFilter(watched, event);
}

void ZIQGroupNoteBottomLine::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), m_color);
}

void ZIQGroupNoteBottomLine::place()
{
    const int width = parentWidget()->width();
    setGeometry(Inset, Top, qMax(0, width - 2 * Inset), 1);
    raise();
}
