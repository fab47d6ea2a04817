// A settings row that names a value: the key on the leading side, the value on the trailing
// side, and a disclosure chevron when a tap opens something.
#pragma once

#include "kit/common/ZIQCommonCellData.h"

class ZIQCommonTextCellData;
using ZIQCommonTextCellDataPtr = std::shared_ptr<ZIQCommonTextCellData>;

class ZIQCommonTextCellData : public ZIQCommonCellData
{
    Q_OBJECT

public:
    explicit ZIQCommonTextCellData(QObject *parent = nullptr);

    QString key() const { return m_key; }
    void setKey(const QString &key) { m_key = key; }
    QString value() const { return m_value; }
    void setValue(const QString &value) { m_value = value; }
    /// Whether the row shows the disclosure chevron.
    bool showAccessory() const { return m_showAccessory; }
    void setShowAccessory(bool show) { m_showAccessory = show; }

private:
    QString m_key;
    QString m_value;
    bool m_showAccessory = false;
};
