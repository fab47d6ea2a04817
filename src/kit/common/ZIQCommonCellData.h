// What one row of a kit table shows, apart from the cell that shows it: the row's height for a
// width, the kind of cell it wants, and the action its cell reports when tapped. Rows are shared
// between a screen's data list and the cell currently showing them.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>

class ZIQCommonCellData;
using ZIQCommonCellDataPtr = std::shared_ptr<ZIQCommonCellData>;

class ZIQCommonCellData : public QObject
{
    Q_OBJECT

public:
    /// Height of a row whose data does not say otherwise.
    static constexpr qreal DefaultHeight = 44;

    explicit ZIQCommonCellData(QObject *parent = nullptr);

    /// The row's height when the table is `width` points wide.
    virtual qreal heightOfWidth(qreal width) const;

    /// The kind of cell a table dequeues for this row; empty when the screen decides.
    QString reuseIdentifier() const { return m_reuseIdentifier; }
    void setReuseIdentifier(const QString &identifier) { m_reuseIdentifier = identifier; }

    /// Name of the owning screen's action that the cell reports when tapped, with the cell as
    /// argument; empty reports nothing.
    QByteArray cselector() const { return m_cselector; }
    void setCselector(const QByteArray &selector) { m_cselector = selector; }

private:
    QString m_reuseIdentifier;
    QByteArray m_cselector;
};
