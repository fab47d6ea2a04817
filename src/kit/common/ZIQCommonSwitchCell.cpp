#include "kit/common/ZIQCommonSwitchCell.h"

#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/Switch.h"
#include "platform/SystemFont.h"

#include <QHBoxLayout>
#include <QLabel>

namespace {

constexpr int HorizontalMargin = 16;
constexpr int TitleFontSize = 16;

} // namespace

ZIQCommonSwitchCell::ZIQCommonSwitchCell(const QString &reuseIdentifier, QWidget *parent)
    : ZIQCommonTableViewCell(reuseIdentifier, parent)
    , m_titleLabel(new QLabel(contentView()))
    , m_switcher(new platform::Switch(contentView()))
{
    m_titleLabel->setObjectName(QStringLiteral("titleLabel"));
    m_titleLabel->setFont(platform::SystemFont::regular(TitleFontSize));
    m_switcher->setObjectName(QStringLiteral("switcher"));

    auto *layout = new QHBoxLayout(contentView());
    layout->setContentsMargins(HorizontalMargin, 0, HorizontalMargin, 0);
    layout->setSpacing(HorizontalMargin);
    layout->addWidget(m_titleLabel, 1, Qt::AlignVCenter);
    layout->addWidget(m_switcher, 0, Qt::AlignVCenter);

    connect(m_switcher, &platform::Switch::toggled, this, &ZIQCommonSwitchCell::switchFlipped);
    ZIQTheme::bind(
        this, [this] { applyColors(); }, ZIQTheme::Rebind::OnThemeAndPaletteChange);
}

void ZIQCommonSwitchCell::fillWithData(const ZIQCommonCellDataPtr &data)
{
    ZIQCommonTableViewCell::fillWithData(data);
    m_switchData = std::dynamic_pointer_cast<ZIQCommonSwitchCellData>(data);
    if (!m_switchData)
        return;
    m_titleLabel->setText(m_switchData->title());
    m_switcher->setAccessibleName(m_switchData->title());
    // A refill shows the row's state at once; only the user's flips slide the knob.
    m_switcher->setOn(m_switchData->on(), false);
}

void ZIQCommonSwitchCell::applyColors()
{
    setTextColor(m_titleLabel, titleColor());
    m_switcher->setOnTintColor(ZIQTheme::dynamicColor(
        QStringLiteral("common_switch_on_color"), ZIQThemeModuleCommon, QStringLiteral("#34C759")));
    m_switcher->setOffTintColor(ZIQTheme::dynamicColor(
        QStringLiteral("common_switch_off_color"), ZIQThemeModuleCommon, QStringLiteral("#E9E9EA")));
    m_switcher->setThumbTintColor(ZIQTheme::dynamicColor(
        QStringLiteral("common_switch_thumb_color"), ZIQThemeModuleCommon, QStringLiteral("#FFFFFF")));
}

void ZIQCommonSwitchCell::switchFlipped(bool on)
{
    if (!m_switchData)
        return;
    m_switchData->setOn(on);
    report(m_switchData->cswitchSelector());
}
