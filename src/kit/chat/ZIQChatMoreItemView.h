// One tile of the "more" panel: the item's icon on a rounded tile with its text below.
#pragma once

#include <QAbstractButton>

class ZIQChatMoreItemView : public QAbstractButton
{
    Q_OBJECT

public:
    explicit ZIQChatMoreItemView(const QIcon &icon, const QString &text, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
