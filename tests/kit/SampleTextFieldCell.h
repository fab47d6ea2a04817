// A kit cell holding a rounded text field inset by the row's margins, filled from a
// SampleTextFieldCellData.
#pragma once

#include "SampleTextFieldCellData.h"

#include "kit/common/ZIQCommonTableViewCell.h"
#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/SystemFont.h"
#include "platform/TextField.h"

#include <QHBoxLayout>

class SampleTextFieldCell : public ZIQCommonTableViewCell
{
    Q_OBJECT

public:
    explicit SampleTextFieldCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr)
        : ZIQCommonTableViewCell(reuseIdentifier, parent)
        , textField(new platform::TextField(contentView()))
    {
        textField->setObjectName(QStringLiteral("textField"));
        textField->setFont(platform::SystemFont::regular(16));
        textField->setPlaceholderFont(platform::SystemFont::regular(16));
        textField->setCornerRadius(8);
        textField->setFixedHeight(40);
        auto *padding = new QWidget;
        padding->resize(12, 20);
        textField->setLeftView(padding);
        auto *layout = new QHBoxLayout(contentView());
        layout->setContentsMargins(16, 0, 16, 0);
        layout->addWidget(textField, 1, Qt::AlignVCenter);
        ZIQTheme::bind(this, [this] {
            const bool dark = ZIQThemeManager::shareManager()->isDark();
            textField->setBackgroundColor(dark ? QColor(0x2C, 0x2C, 0x2E) : QColor(0xF2, 0xF2, 0xF7));
            textField->setTextColor(dark ? Qt::white : Qt::black);
            textField->setPlaceholderColor(QColor(0x8E, 0x8E, 0x93));
        });
    }

    void fillWithData(const ZIQCommonCellDataPtr &data) override
    {
        ZIQCommonTableViewCell::fillWithData(data);
        if (auto row = std::dynamic_pointer_cast<SampleTextFieldCellData>(data)) {
            textField->setPlaceholderText(row->placeholder);
            textField->setText(row->text);
        }
    }

    platform::TextField *textField;
};
