// One entry row of the note card: the entry's number in bold and its text on one line, over a
// hairline; or the expand row, which shows only its text in the theme's primary colour.
#pragma once

#include "kit/common/ZIQCommonTextCell.h"
#include "plugin/provider/ZIQGroupNotePreviewCellData.h"

#include <functional>

class ZIQGroupNotePreviewCell : public ZIQCommonTextCell
{
    Q_OBJECT

public:
    static constexpr int RowHeight = 38;

    explicit ZIQGroupNotePreviewCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    ZIQGroupNotePreviewCellDataPtr cellData() const { return m_cellData; }
    /// Run when the row is tapped.
    std::function<void()> pluginMsgSelectCallback() const { return m_pluginMsgSelectCallback; }
    void setPluginMsgSelectCallback(std::function<void()> callback) { m_pluginMsgSelectCallback = std::move(callback); }

    QLabel *indexLabel() const { return m_indexLabel; }
    QLabel *contentLabel() const { return m_contentLabel; }
    QWidget *bottomLine() const { return m_bottomLine; }

    /// Shows a ZIQGroupNotePreviewCellData; other data leaves the row as it was.
    void fillWithData(const ZIQCommonCellDataPtr &data) override;
    /// Whether this is the row that expands a collapsed card.
    bool isExpandCell() const;
    void onSelectMessage();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void layoutLabels();
    void applyColors();

    ZIQGroupNotePreviewCellDataPtr m_cellData;
    std::function<void()> m_pluginMsgSelectCallback;
    QLabel *m_indexLabel;
    QLabel *m_contentLabel;
    QWidget *m_bottomLine;
};
