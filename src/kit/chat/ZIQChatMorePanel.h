// The input bar's "more" panel: what the modules offer at the chat's extension point, as a grid
// of tiles (icon on a rounded tile, text below), heaviest first. Tapping a tile runs its
// onClicked with the parameters the items were asked with.
#pragma once

#include "kit/core/ZIQExtensionInfo.h"

#include <QList>
#include <QVariantMap>
#include <QWidget>

class QLabel;

class ZIQChatMorePanel : public QWidget
{
    Q_OBJECT

public:
    static constexpr int Columns = 4;
    static constexpr int TileSize = 64;
    static constexpr int ItemHeight = 96;
    static constexpr int PanelHeight = 2 * ItemHeight + 24;

    explicit ZIQChatMorePanel(QWidget *parent = nullptr);

    void setItems(const QList<ZIQExtensionInfo> &items, const QVariantMap &parameters);
    QList<ZIQExtensionInfo> items() const { return m_items; }
    /// The tile of item `index`, or nullptr.
    QWidget *itemView(int index) const { return m_itemViews.value(index); }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void layoutItems();

    QList<ZIQExtensionInfo> m_items;
    QVariantMap m_parameters;
    QList<QWidget *> m_itemViews;
    QLabel *m_emptyLabel;
};
