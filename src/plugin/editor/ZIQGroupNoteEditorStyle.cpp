#include "plugin/editor/ZIQGroupNoteEditorStyle.h"

#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQRTL.h"
#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQTool.h"
#include "platform/SystemFont.h"
#include "platform/TextField.h"
#include "plugin/service/ZIQGroupNoteColors.h"

#include <QWidget>

QColor ZIQGroupNoteEditorStyle::color(const char *key, const char *defaultHex)
{
    return ZIQGroupNoteColors::color(key, defaultHex);
}

QString ZIQGroupNoteEditorStyle::localized(const char *key)
{
    return ZIQGlobalization::getLocalizedStringForKey(QString::fromLatin1(key));
}

void ZIQGroupNoteEditorStyle::toast(const char *key)
{
    ZIQTool::makeToast(localized(key), 3.0, ZIQToastPosition::Center);
}

bool ZIQGroupNoteEditorStyle::acceptsText(const QString &text)
{
    if (text.size() <= MaxTextLength)
        return true;
    toast("ZIQGroupNoteTextFieldExceedLimit");
    return false;
}

void ZIQGroupNoteEditorStyle::setTextColor(QWidget *widget, const QColor &color)
{
    // Both roles: labels draw with WindowText, buttons with ButtonText.
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, color);
    palette.setColor(QPalette::ButtonText, color);
    widget->setPalette(palette);
}

void ZIQGroupNoteEditorStyle::setBackgroundColor(QWidget *widget, const QColor &color)
{
    ZIQGroupNoteColors::fillBackground(widget, color);
}

platform::TextField *ZIQGroupNoteEditorStyle::textField(
    const QString &name, int pointSize, const char *placeholderKey, QWidget *parent)
{
    auto *field = new platform::TextField(parent);
    field->setObjectName(name);
    field->setFont(platform::SystemFont::regular(pointSize));
    field->setPlaceholderText(localized(placeholderKey));
    return field;
}

Qt::Alignment ZIQGroupNoteEditorStyle::textAlignment(Qt::Alignment vertical)
{
    return (getRTLOption() ? Qt::AlignRight : Qt::AlignLeft) | vertical;
}
