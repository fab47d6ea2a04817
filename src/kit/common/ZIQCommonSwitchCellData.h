// A settings row with an on/off switch: its title, its state, and the action reported when
// the user flips it.
#pragma once

#include "kit/common/ZIQCommonCellData.h"

class ZIQCommonSwitchCellData;
using ZIQCommonSwitchCellDataPtr = std::shared_ptr<ZIQCommonSwitchCellData>;

class ZIQCommonSwitchCellData : public ZIQCommonCellData
{
    Q_OBJECT

public:
    explicit ZIQCommonSwitchCellData(QObject *parent = nullptr);

    QString title() const { return m_title; }
    void setTitle(const QString &title) { m_title = title; }
    /// The switch's state; follows the user's flips while a cell shows this row.
    bool on() const { return m_on; }
    void setOn(bool on) { m_on = on; }
    /// Name of the owning screen's action reported after a flip, with the cell as argument;
    /// empty reports nothing.
    QByteArray cswitchSelector() const { return m_cswitchSelector; }
    void setCswitchSelector(const QByteArray &selector) { m_cswitchSelector = selector; }

private:
    QString m_title;
    bool m_on = false;
    QByteArray m_cswitchSelector;
};
