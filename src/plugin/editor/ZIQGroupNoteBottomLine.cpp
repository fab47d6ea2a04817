#include "plugin/editor/ZIQGroupNoteBottomLine.h"

#include "kit/common/ZIQTheme.h"
#include "plugin/service/ZIQGroupNoteDefines.h"

#include <QEvent>

ZIQGroupNoteBottomLine::ZIQGroupNoteBottomLine(QWidget *row)
    : QWidget(row)
{
    setObjectName(QStringLiteral("bottomLine"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAutoFillBackground(true);
    ZIQTheme::bind(
        this,
        [this] {
            QPalette pal = palette();
            pal.setColor(QPalette::Window,
                ZIQTheme::dynamicColor(QStringLiteral("group_note_create_title_border_color"), ZIQGroupNoteThemeModule,
                    QStringLiteral("#EEEEEE")));
            setPalette(pal);
        },
        ZIQTheme::Rebind::OnThemeChange);
    row->installEventFilter(this);
    place();
}

bool ZIQGroupNoteBottomLine::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parent() && event->type() == QEvent::Resize)
        place();
    return QWidget::eventFilter(watched, event);
}

void ZIQGroupNoteBottomLine::place()
{
    const int width = parentWidget()->width();
    setGeometry(Inset, Top, qMax(0, width - 2 * Inset), 1);
    raise();
}
