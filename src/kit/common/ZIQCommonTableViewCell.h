// The kit's base table cell: it keeps the row data it was last filled with, draws itself from
// that data alone, and takes its background from the theme, again after every theme change.
#pragma once

#include "kit/common/ZIQCommonCellData.h"
#include "platform/TableViewCell.h"

class QLabel;

class ZIQCommonTableViewCell : public platform::TableViewCell
{
    Q_OBJECT

public:
    explicit ZIQCommonTableViewCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    /// Shows `data`. A tap on the row reports the data's cselector to the owning screen. Filling draws everything from
    /// the data, so filling again with the same data changes nothing. Subclasses fill this base first, then their own
    /// widgets.
    virtual void fillWithData(const ZIQCommonCellDataPtr &data);
    /// The data last filled in.
    ZIQCommonCellDataPtr data() const { return m_data; }

    /// The theme colour the row is filled with (by default the kit's cell background), looked
    /// up now and after every theme or palette change. An empty key leaves the row clear.
    void setBackgroundThemeColor(const QString &key, int module, const QString &defaultColor);

protected:
    /// The kit's text colours for a row's title and for its secondary text.
    static QColor titleColor();
    static QColor detailColor();
    static void setTextColor(QLabel *label, const QColor &color);
    /// Delivers `action` with this cell to the screen owning it, if that screen answers to it.
    void report(const QByteArray &action);

private:
    void applyBackground();

    ZIQCommonCellDataPtr m_data;
    QString m_backgroundKey;
    int m_backgroundModule;
    QString m_backgroundDefault;
};
