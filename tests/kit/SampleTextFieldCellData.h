// A row holding one editable line of text, as a settings screen built on the kit's cells
// might add of its own.
#pragma once

#include "kit/common/ZIQCommonCellData.h"

class SampleTextFieldCellData : public ZIQCommonCellData
{
    Q_OBJECT

public:
    static constexpr qreal Height = 56;

    SampleTextFieldCellData(const QString &placeholder, const QString &text)
        : placeholder(placeholder)
        , text(text)
    {
        setReuseIdentifier(QStringLiteral("textFieldCell"));
    }

    qreal heightOfWidth(qreal) const override { return Height; }

    QString placeholder;
    QString text;
};
