#include "kit/common/ZIQCommonTableViewCell.h"

#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/ViewController.h"

#include <QLabel>

ZIQCommonTableViewCell::ZIQCommonTableViewCell(const QString &reuseIdentifier, QWidget *parent)
    : platform::TableViewCell(reuseIdentifier, parent)
    , m_backgroundKey(QStringLiteral("common_cell_bg_color"))
    , m_backgroundModule(ZIQThemeModuleCommon)
    , m_backgroundDefault(QStringLiteral("#FFFFFF"))
{
    ZIQTheme::bind(
        this, [this] { applyBackground(); }, ZIQTheme::Rebind::OnThemeAndPaletteChange);
    connect(this, &TableViewCell::tapped, this, [this] {
        if (m_data)
            report(m_data->cselector());
    });
}

void ZIQCommonTableViewCell::fillWithData(const ZIQCommonCellDataPtr &data)
{
    m_data = data;
}

void ZIQCommonTableViewCell::setBackgroundThemeColor(const QString &key, int module, const QString &defaultColor)
{
    m_backgroundKey = key;
    m_backgroundModule = module;
    m_backgroundDefault = defaultColor;
    applyBackground();
}

QColor ZIQCommonTableViewCell::titleColor()
{
    return ZIQTheme::dynamicColor(
        QStringLiteral("common_cell_title_color"), ZIQThemeModuleCommon, QStringLiteral("#000000"));
}

QColor ZIQCommonTableViewCell::detailColor()
{
    return ZIQTheme::dynamicColor(
        QStringLiteral("common_cell_detail_color"), ZIQThemeModuleCommon, QStringLiteral("#8E8E93"));
}

void ZIQCommonTableViewCell::setTextColor(QLabel *label, const QColor &color)
{
    // Inside a table the row sits on a Base background, against which a label would otherwise
    // pick the Text role and ignore this colour.
    label->setForegroundRole(QPalette::WindowText);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
}

void ZIQCommonTableViewCell::report(const QByteArray &action)
{
    if (!action.isEmpty())
        platform::ViewController::performAction(this, action.constData(), this);
}

void ZIQCommonTableViewCell::applyBackground()
{
    setBackgroundColor(m_backgroundKey.isEmpty()
            ? QColor()
            : ZIQTheme::dynamicColor(m_backgroundKey, m_backgroundModule, m_backgroundDefault));
}
