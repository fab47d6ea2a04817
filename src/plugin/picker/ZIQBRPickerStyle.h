// Colours, fonts, sizes and texts of the picker's bottom sheet and of its wheels. Every getter
// returns the set value or, when none was set (or the value is out of range, or the colour is
// invalid), the default.
#pragma once

#include <QColor>
#include <QFont>
#include <QPixmap>
#include <QRectF>
#include <QString>

#include <optional>

enum class ZIQBRBorderStyle {
    None,
    Solid, ///< a border in the text colour
    Fill, ///< filled with the text colour
};

class ZIQBRPickerStyle
{
public:
    /// A colour that follows the application's light or dark appearance.
    static QColor br_colorWithLightColor(const QColor &lightColor, const QColor &darkColor);

    /// Confirm filled with `themeColor`, the title and Cancel tinted with it.
    static ZIQBRPickerStyle pickerStyleWithThemeColor(const QColor &themeColor);
    /// Confirm reads "Done" in bold in `doneTextColor`.
    static ZIQBRPickerStyle pickerStyleWithDoneTextColor(const QColor &doneTextColor);
    /// Confirm shows `doneBtnImage` instead of a text.
    static ZIQBRPickerStyle pickerStyleWithDoneBtnImage(const QPixmap &doneBtnImage);

    // Mask and panel
    QColor maskColor() const;
    void setMaskColor(const QColor &color) { m_maskColor = color; }
    bool hiddenMaskView() const { return m_hiddenMaskView; }
    void setHiddenMaskView(bool hidden) { m_hiddenMaskView = hidden; }
    /// Invalid when unset: the panel then shows the title bar's and the picker's colours.
    QColor alertViewColor() const { return m_alertViewColor; }
    void setAlertViewColor(const QColor &color) { m_alertViewColor = color; }
    qreal topCornerRadius() const { return m_topCornerRadius; }
    void setTopCornerRadius(qreal radius) { m_topCornerRadius = radius; }
    QColor shadowLineColor() const;
    void setShadowLineColor(const QColor &color) { m_shadowLineColor = color; }
    qreal shadowLineHeight() const;
    void setShadowLineHeight(qreal height) { m_shadowLineHeight = height; }
    bool hiddenShadowLine() const { return m_hiddenShadowLine; }
    void setHiddenShadowLine(bool hidden) { m_hiddenShadowLine = hidden; }
    qreal paddingBottom() const;
    void setPaddingBottom(qreal padding) { m_paddingBottom = padding; }

    // Title bar
    QColor titleBarColor() const;
    void setTitleBarColor(const QColor &color) { m_titleBarColor = color; }
    qreal titleBarHeight() const;
    void setTitleBarHeight(qreal height) { m_titleBarHeight = height; }
    QColor titleLineColor() const;
    void setTitleLineColor(const QColor &color) { m_titleLineColor = color; }
    bool hiddenTitleLine() const { return m_hiddenTitleLine; }
    void setHiddenTitleLine(bool hidden) { m_hiddenTitleLine = hidden; }
    bool hiddenTitleBarView() const { return m_hiddenTitleBarView; }
    void setHiddenTitleBarView(bool hidden) { m_hiddenTitleBarView = hidden; }
    bool hiddenTitleLabel() const { return m_hiddenTitleLabel; }
    void setHiddenTitleLabel(bool hidden) { m_hiddenTitleLabel = hidden; }
    QColor titleLabelColor() const { return orDefault(m_titleLabelColor, QColor(Qt::transparent)); }
    void setTitleLabelColor(const QColor &color) { m_titleLabelColor = color; }
    QColor titleTextColor() const;
    void setTitleTextColor(const QColor &color) { m_titleTextColor = color; }
    QFont titleTextFont() const;
    void setTitleTextFont(const QFont &font) { m_titleTextFont = font; }
    /// `screenWidth` is the width of the view the sheet is shown in.
    QRectF titleLabelFrame(qreal screenWidth) const;
    void setTitleLabelFrame(const QRectF &frame) { m_titleLabelFrame = frame; }

    // Cancel button
    QColor cancelColor() const { return orDefault(m_cancelColor, QColor(Qt::transparent)); }
    void setCancelColor(const QColor &color) { m_cancelColor = color; }
    QColor cancelTextColor() const;
    void setCancelTextColor(const QColor &color) { m_cancelTextColor = color; }
    QFont cancelTextFont() const;
    void setCancelTextFont(const QFont &font) { m_cancelTextFont = font; }
    QString cancelBtnTitle() const;
    void setCancelBtnTitle(const QString &title) { m_cancelBtnTitle = title; }
    QRectF cancelBtnFrame() const { return m_cancelBtnFrame.value_or(QRectF(5, 8, 60, 28)); }
    void setCancelBtnFrame(const QRectF &frame) { m_cancelBtnFrame = frame; }
    ZIQBRBorderStyle cancelBorderStyle() const { return m_cancelBorderStyle; }
    void setCancelBorderStyle(ZIQBRBorderStyle style) { m_cancelBorderStyle = style; }
    qreal cancelCornerRadius() const { return m_cancelCornerRadius; }
    void setCancelCornerRadius(qreal radius) { m_cancelCornerRadius = radius; }
    qreal cancelBorderWidth() const { return m_cancelBorderWidth; }
    void setCancelBorderWidth(qreal width) { m_cancelBorderWidth = width; }
    QPixmap cancelBtnImage() const { return m_cancelBtnImage; }
    void setCancelBtnImage(const QPixmap &image) { m_cancelBtnImage = image; }
    bool hiddenCancelBtn() const { return m_hiddenCancelBtn; }
    void setHiddenCancelBtn(bool hidden) { m_hiddenCancelBtn = hidden; }

    // Confirm button
    QColor doneColor() const { return orDefault(m_doneColor, QColor(Qt::transparent)); }
    void setDoneColor(const QColor &color) { m_doneColor = color; }
    QColor doneTextColor() const;
    void setDoneTextColor(const QColor &color) { m_doneTextColor = color; }
    QFont doneTextFont() const;
    void setDoneTextFont(const QFont &font) { m_doneTextFont = font; }
    QString doneBtnTitle() const;
    void setDoneBtnTitle(const QString &title) { m_doneBtnTitle = title; }
    QRectF doneBtnFrame(qreal screenWidth) const;
    void setDoneBtnFrame(const QRectF &frame) { m_doneBtnFrame = frame; }
    ZIQBRBorderStyle doneBorderStyle() const { return m_doneBorderStyle; }
    void setDoneBorderStyle(ZIQBRBorderStyle style) { m_doneBorderStyle = style; }
    qreal doneCornerRadius() const { return m_doneCornerRadius; }
    void setDoneCornerRadius(qreal radius) { m_doneCornerRadius = radius; }
    qreal doneBorderWidth() const { return m_doneBorderWidth; }
    void setDoneBorderWidth(qreal width) { m_doneBorderWidth = width; }
    QPixmap doneBtnImage() const { return m_doneBtnImage; }
    void setDoneBtnImage(const QPixmap &image) { m_doneBtnImage = image; }
    bool hiddenDoneBtn() const { return m_hiddenDoneBtn; }
    void setHiddenDoneBtn(bool hidden) { m_hiddenDoneBtn = hidden; }

    // Wheels
    QColor pickerColor() const;
    void setPickerColor(const QColor &color) { m_pickerColor = color; }
    QColor separatorColor() const;
    void setSeparatorColor(const QColor &color) { m_separatorColor = color; }
    qreal separatorHeight() const { return m_separatorHeight; }
    void setSeparatorHeight(qreal height) { m_separatorHeight = height; }
    QColor pickerTextColor() const;
    void setPickerTextColor(const QColor &color) { m_pickerTextColor = color; }
    QFont pickerTextFont() const;
    void setPickerTextFont(const QFont &font) { m_pickerTextFont = font; }
    /// Invalid when unset.
    QColor selectRowColor() const { return m_selectRowColor; }
    void setSelectRowColor(const QColor &color) { m_selectRowColor = color; }
    /// Invalid when unset.
    QColor selectRowTextColor() const { return m_selectRowTextColor; }
    void setSelectRowTextColor(const QColor &color) { m_selectRowTextColor = color; }
    std::optional<QFont> selectRowTextFont() const { return m_selectRowTextFont; }
    void setSelectRowTextFont(const QFont &font) { m_selectRowTextFont = font; }
    qreal pickerHeight() const;
    void setPickerHeight(qreal height) { m_pickerHeight = height; }
    qreal rowHeight() const;
    void setRowHeight(qreal height) { m_rowHeight = height; }
    bool clearPickerNewStyle() const { return m_clearPickerNewStyle; }
    void setClearPickerNewStyle(bool clear) { m_clearPickerNewStyle = clear; }
    /// A BCP 47 tag such as "en", "zh-Hans" or "zh-Hant".
    QString language() const;
    void setLanguage(const QString &language) { m_language = language; }

    // Per-column unit labels
    QColor dateUnitTextColor() const;
    void setDateUnitTextColor(const QColor &color) { m_dateUnitTextColor = color; }
    QFont dateUnitTextFont() const;
    void setDateUnitTextFont(const QFont &font) { m_dateUnitTextFont = font; }
    qreal dateUnitOffsetX() const { return m_dateUnitOffsetX; }
    void setDateUnitOffsetX(qreal offset) { m_dateUnitOffsetX = offset; }
    qreal dateUnitOffsetY() const { return m_dateUnitOffsetY; }
    void setDateUnitOffsetY(qreal offset) { m_dateUnitOffsetY = offset; }

private:
    /// An invalid colour counts as unset.
    static QColor orDefault(const QColor &color, const QColor &fallback) { return color.isValid() ? color : fallback; }

    QColor m_maskColor;
    bool m_hiddenMaskView = false;
    QColor m_alertViewColor;
    qreal m_topCornerRadius = 0;
    QColor m_shadowLineColor;
    qreal m_shadowLineHeight = 0;
    bool m_hiddenShadowLine = false;
    qreal m_paddingBottom = 0;

    QColor m_titleBarColor;
    qreal m_titleBarHeight = 0;
    QColor m_titleLineColor;
    bool m_hiddenTitleLine = false;
    bool m_hiddenTitleBarView = false;
    bool m_hiddenTitleLabel = false;
    QColor m_titleLabelColor;
    QColor m_titleTextColor;
    std::optional<QFont> m_titleTextFont;
    std::optional<QRectF> m_titleLabelFrame;

    QColor m_cancelColor;
    QColor m_cancelTextColor;
    std::optional<QFont> m_cancelTextFont;
    std::optional<QString> m_cancelBtnTitle;
    std::optional<QRectF> m_cancelBtnFrame;
    ZIQBRBorderStyle m_cancelBorderStyle = ZIQBRBorderStyle::None;
    qreal m_cancelCornerRadius = 0;
    qreal m_cancelBorderWidth = 0;
    QPixmap m_cancelBtnImage;
    bool m_hiddenCancelBtn = false;

    QColor m_doneColor;
    QColor m_doneTextColor;
    std::optional<QFont> m_doneTextFont;
    std::optional<QString> m_doneBtnTitle;
    std::optional<QRectF> m_doneBtnFrame;
    ZIQBRBorderStyle m_doneBorderStyle = ZIQBRBorderStyle::None;
    qreal m_doneCornerRadius = 0;
    qreal m_doneBorderWidth = 0;
    QPixmap m_doneBtnImage;
    bool m_hiddenDoneBtn = false;

    QColor m_pickerColor;
    QColor m_separatorColor;
    qreal m_separatorHeight = 0;
    QColor m_pickerTextColor;
    std::optional<QFont> m_pickerTextFont;
    QColor m_selectRowColor;
    QColor m_selectRowTextColor;
    std::optional<QFont> m_selectRowTextFont;
    qreal m_pickerHeight = 0;
    qreal m_rowHeight = 0;
    bool m_clearPickerNewStyle = false;
    std::optional<QString> m_language;

    QColor m_dateUnitTextColor;
    std::optional<QFont> m_dateUnitTextFont;
    qreal m_dateUnitOffsetX = 0;
    qreal m_dateUnitOffsetY = 0;
};
