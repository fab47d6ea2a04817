#include "plugin/picker/ZIQBRPickerStyle.h"

#include "kit/common/ZIQGlobalization.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"

#include <QGuiApplication>
#include <QPalette>

namespace {

constexpr qreal DefaultTitleBarHeight = 44;
constexpr qreal DefaultPickerHeight = 216;
constexpr qreal DefaultRowHeight = 35;
constexpr qreal DefaultLineHeight = 0.5;

QColor grey(qreal white)
{
    return QColor::fromRgbF(white, white, white);
}

// Qt has no semantic system colours; these follow the light or dark appearance they stand for.
bool isDarkAppearance()
{
    return QGuiApplication::palette().color(QPalette::Window).lightnessF() < 0.5;
}

QColor separatorGrey()
{
    return isDarkAppearance() ? QColor(56, 56, 58) : QColor(198, 198, 200);
}

QColor labelColor()
{
    return isDarkAppearance() ? grey(0.92) : grey(0.2);
}

QColor groupedSecondaryBackground()
{
    return isDarkAppearance() ? QColor(28, 28, 30) : QColor(Qt::white);
}

} // namespace

QColor ZIQBRPickerStyle::br_colorWithLightColor(const QColor &lightColor, const QColor &darkColor)
{
    return isDarkAppearance() ? darkColor : lightColor;
}

ZIQBRPickerStyle ZIQBRPickerStyle::pickerStyleWithThemeColor(const QColor &themeColor)
{
    ZIQBRPickerStyle style;
    style.setCancelTextColor(themeColor);
    style.setCancelBorderStyle(ZIQBRBorderStyle::Solid);
    style.setCancelCornerRadius(6);
    style.setCancelBorderWidth(1);
    style.setTitleTextColor(themeColor);
    style.setDoneColor(themeColor);
    style.setDoneTextColor(Qt::white);
    style.setDoneBorderStyle(ZIQBRBorderStyle::Fill);
    style.setDoneCornerRadius(6);
    return style;
}

ZIQBRPickerStyle ZIQBRPickerStyle::pickerStyleWithDoneTextColor(const QColor &doneTextColor)
{
    ZIQBRPickerStyle style;
    style.setDoneTextColor(doneTextColor);
    style.setDoneTextFont(platform::SystemFont::bold(16));
    style.setDoneBtnTitle(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteNotDatePickerDone")));
    return style;
}

ZIQBRPickerStyle ZIQBRPickerStyle::pickerStyleWithDoneBtnImage(const QPixmap &doneBtnImage)
{
    ZIQBRPickerStyle style;
    style.setDoneBtnImage(doneBtnImage);
    style.setDoneBtnTitle(QString());
    return style;
}

QColor ZIQBRPickerStyle::maskColor() const
{
    if (m_maskColor.isValid())
        return m_maskColor;
    QColor light = Qt::black;
    light.setAlphaF(0.3);
    QColor dark = grey(0.4);
    dark.setAlphaF(0.3);
    return br_colorWithLightColor(light, dark);
}

QColor ZIQBRPickerStyle::shadowLineColor() const
{
    return orDefault(m_shadowLineColor, separatorGrey());
}

qreal ZIQBRPickerStyle::shadowLineHeight() const
{
    return m_shadowLineHeight <= 0 || m_shadowLineHeight > 5 ? DefaultLineHeight : m_shadowLineHeight;
}

qreal ZIQBRPickerStyle::paddingBottom() const
{
    // Unset, the panel stays clear of the phone's home indicator.
    return m_paddingBottom > 0 ? m_paddingBottom : platform::Screen::safeAreaInsets().bottom();
}

QColor ZIQBRPickerStyle::titleBarColor() const
{
    return orDefault(m_titleBarColor, groupedSecondaryBackground());
}

qreal ZIQBRPickerStyle::titleBarHeight() const
{
    if (m_hiddenTitleBarView)
        return 0;
    const bool barIsEmpty = m_hiddenTitleLabel && m_hiddenCancelBtn && m_hiddenDoneBtn;
    if (m_titleBarHeight < DefaultTitleBarHeight && !barIsEmpty)
        return DefaultTitleBarHeight;
    return m_titleBarHeight;
}

QColor ZIQBRPickerStyle::titleLineColor() const
{
    return orDefault(m_titleLineColor, br_colorWithLightColor(QColor(237, 237, 238), QColor(24, 24, 28)));
}

QColor ZIQBRPickerStyle::titleTextColor() const
{
    return orDefault(m_titleTextColor, grey(0.6));
}

QFont ZIQBRPickerStyle::titleTextFont() const
{
    return m_titleTextFont.value_or(platform::SystemFont::regular(15));
}

QRectF ZIQBRPickerStyle::titleLabelFrame(qreal screenWidth) const
{
    return m_titleLabelFrame.value_or(QRectF(67, 0, screenWidth - 134, DefaultTitleBarHeight));
}

QColor ZIQBRPickerStyle::cancelTextColor() const
{
    return orDefault(m_cancelTextColor, labelColor());
}

QFont ZIQBRPickerStyle::cancelTextFont() const
{
    return m_cancelTextFont.value_or(platform::SystemFont::regular(16));
}

QString ZIQBRPickerStyle::cancelBtnTitle() const
{
    return m_cancelBtnTitle.value_or(
        ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteNotDatePickerCancel")));
}

QColor ZIQBRPickerStyle::doneTextColor() const
{
    return orDefault(m_doneTextColor, labelColor());
}

QFont ZIQBRPickerStyle::doneTextFont() const
{
    return m_doneTextFont.value_or(platform::SystemFont::regular(16));
}

QString ZIQBRPickerStyle::doneBtnTitle() const
{
    return m_doneBtnTitle.value_or(
        ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteNotDatePickerConfirm")));
}

QRectF ZIQBRPickerStyle::doneBtnFrame(qreal screenWidth) const
{
    return m_doneBtnFrame.value_or(QRectF(screenWidth - 65, 8, 60, 28));
}

QColor ZIQBRPickerStyle::pickerColor() const
{
    return orDefault(m_pickerColor, groupedSecondaryBackground());
}

QColor ZIQBRPickerStyle::separatorColor() const
{
    return orDefault(m_separatorColor, separatorGrey());
}

QColor ZIQBRPickerStyle::pickerTextColor() const
{
    return orDefault(m_pickerTextColor, labelColor());
}

QFont ZIQBRPickerStyle::pickerTextFont() const
{
    return m_pickerTextFont.value_or(platform::SystemFont::regular(18));
}

qreal ZIQBRPickerStyle::pickerHeight() const
{
    return m_pickerHeight < 40 ? DefaultPickerHeight : m_pickerHeight;
}

qreal ZIQBRPickerStyle::rowHeight() const
{
    return m_rowHeight < 20 ? DefaultRowHeight : m_rowHeight;
}

QString ZIQBRPickerStyle::language() const
{
    return m_language.value_or(ZIQGlobalization::getPreferredLanguage());
}

QColor ZIQBRPickerStyle::dateUnitTextColor() const
{
    return orDefault(m_dateUnitTextColor, labelColor());
}

QFont ZIQBRPickerStyle::dateUnitTextFont() const
{
    return m_dateUnitTextFont.value_or(platform::SystemFont::regular(18));
}
