// One row of a TableView: a real widget that the table places, hides when it scrolls away and
// hands out again for another row of the same kind. Subclasses put their children into
// contentView() and reset per-row state in prepareForReuse().
#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

namespace platform {

class TableViewCell : public QWidget
{
    Q_OBJECT

public:
    enum class SelectionStyle { None, Gray };
    enum class AccessoryType { None, DisclosureIndicator };

    /// Width taken at the trailing edge by an accessory, outside contentView().
    static constexpr int AccessoryWidth = 36;

    explicit TableViewCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    /// The kind of row this cell shows; cells are only handed out again for the same kind.
    QString reuseIdentifier() const { return m_reuseIdentifier; }
    /// Holds the row's own widgets; fills the cell but for the accessory.
    QWidget *contentView() const { return m_contentView; }

    /// Called before the cell is handed out for another row; resets what the last row set.
    virtual void prepareForReuse();

    /// Gray darkens the row while it is pressed; None (the default) shows no feedback.
    SelectionStyle selectionStyle() const { return m_selectionStyle; }
    void setSelectionStyle(SelectionStyle style) { m_selectionStyle = style; }
    AccessoryType accessoryType() const { return m_accessoryType; }
    void setAccessoryType(AccessoryType type);

    /// Invalid (the default) leaves the cell clear, showing the table's background.
    QColor backgroundColor() const { return m_backgroundColor; }
    void setBackgroundColor(const QColor &color);
    /// A hairline along the bottom edge; the table sets it from its separator style.
    void setSeparatorColor(const QColor &color);
    /// Pressed-row feedback, drawn when the selection style asks for it.
    bool isHighlighted() const { return m_highlighted; }
    void setHighlighted(bool highlighted);

Q_SIGNALS:
    /// The user tapped the row: pressed and let go on it without scrolling. The table sends
    /// this before it tells its delegate, so a cell can act on its own taps.
    void tapped();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void layoutContentView();

    QString m_reuseIdentifier;
    QWidget *m_contentView;
    SelectionStyle m_selectionStyle = SelectionStyle::None;
    AccessoryType m_accessoryType = AccessoryType::None;
    QColor m_backgroundColor;
    QColor m_separatorColor;
    bool m_highlighted = false;
};

} // namespace platform
