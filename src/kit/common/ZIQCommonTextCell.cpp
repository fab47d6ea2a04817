#include "kit/common/ZIQCommonTextCell.h"

#include "kit/common/ZIQTheme.h"
#include "platform/SystemFont.h"

#include <QHBoxLayout>
#include <QLabel>

namespace {

constexpr int HorizontalMargin = 16;
constexpr int FontSize = 16;

} // namespace

ZIQCommonTextCell::ZIQCommonTextCell(const QString &reuseIdentifier, QWidget *parent)
    : ZIQCommonTableViewCell(reuseIdentifier, parent)
    , m_keyLabel(new QLabel(contentView()))
    , m_valueLabel(new QLabel(contentView()))
    , m_layout(new QHBoxLayout(contentView()))
{
    setSelectionStyle(SelectionStyle::Gray);
    m_keyLabel->setObjectName(QStringLiteral("keyLabel"));
    m_keyLabel->setFont(platform::SystemFont::regular(FontSize));
    m_valueLabel->setObjectName(QStringLiteral("valueLabel"));
    m_valueLabel->setFont(platform::SystemFont::regular(FontSize));
    m_valueLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    m_layout->setContentsMargins(HorizontalMargin, 0, HorizontalMargin, 0);
    m_layout->setSpacing(HorizontalMargin);
    m_layout->addWidget(m_keyLabel, 0, Qt::AlignVCenter);
    m_layout->addWidget(m_valueLabel, 1, Qt::AlignVCenter);

    ZIQTheme::bind(
        this, [this] { applyColors(); }, ZIQTheme::Rebind::OnThemeAndPaletteChange);
}

void ZIQCommonTextCell::fillWithData(const ZIQCommonCellDataPtr &data)
{
    ZIQCommonTableViewCell::fillWithData(data);
    m_textData = std::dynamic_pointer_cast<ZIQCommonTextCellData>(data);
    if (!m_textData)
        return;
    m_keyLabel->setText(m_textData->key());
    m_valueLabel->setText(m_textData->value());
    const bool accessory = m_textData->showAccessory();
    setAccessoryType(accessory ? AccessoryType::DisclosureIndicator : AccessoryType::None);
    // The chevron stands in the accessory area with its own margin; the value ends just before it.
    m_layout->setContentsMargins(HorizontalMargin, 0, accessory ? 0 : HorizontalMargin, 0);
}

void ZIQCommonTextCell::applyColors()
{
    setTextColor(m_keyLabel, titleColor());
    setTextColor(m_valueLabel, detailColor());
}
