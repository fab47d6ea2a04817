// A one-line notice centred across the chat ("Bob joined", a plug-in's tips), without bubble or
// picture. A plug-in row sets pluginMsgSelectCallback; the chat runs it when the row is tapped
// with the tapped cell and the navigation controller to push onto.
#pragma once

#include "kit/chat/ZIQMessageCell.h"
#include "kit/chat/ZIQSystemMessageCellData.h"

#include <QVariantMap>
#include <functional>

class QLabel;

class ZIQSystemMessageCell : public ZIQMessageCell
{
    Q_OBJECT

public:
    static constexpr int FontSize = 13;
    static constexpr qreal RowPadding = 8;
    static constexpr qreal HorizontalInset = 8;
    static constexpr qreal VerticalInset = 4;

    Q_INVOKABLE explicit ZIQSystemMessageCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    /// The line within 80% of the screen, plus its insets.
    static QSizeF getContentSize(ZIQMessageCellData *data);
    static qreal rowHeight(const QSizeF &contentSize) { return contentSize.height() + 2 * RowPadding; }

    /// Run with {"…_PluginCustomCellClick_Cell": this cell, "…_PluginCustomCellClick_PushVC":
    /// the navigation controller} when the row is tapped.
    std::function<void(const QVariantMap &param)> pluginMsgSelectCallback;

    QLabel *textLabel() const { return m_textLabel; }
    void fillWithData(const ZIQMessageCellDataPtr &data) override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    QRect reactionAnchor() const override;
    void applyTheme() override;

private:
    void layoutLine();

    QLabel *m_textLabel;
};
