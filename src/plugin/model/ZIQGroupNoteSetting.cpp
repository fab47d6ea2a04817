#include "plugin/model/ZIQGroupNoteSetting.h"

#include "kit/common/ZIQTool.h"
#include "plugin/model/ZIQGroupNoteJsonValue.h"

ZIQGroupNoteSetting::ZIQGroupNoteSetting(bool allowMultiSubmit, bool allowNotify, double deadlineTimestampInMS)
    : m_allowMultiSubmit(allowMultiSubmit)
    , m_allowNotify(allowNotify)
    , m_deadlineTimestampInMS(deadlineTimestampInMS)
{
}

QJsonObject ZIQGroupNoteSetting::configDictionary() const
{
    return QJsonObject {
        { QStringLiteral("multi_submit"), m_allowMultiSubmit },
        { QStringLiteral("notify"), m_allowNotify },
        { QStringLiteral("deadline"), m_deadlineTimestampInMS },
    };
}

QString ZIQGroupNoteSetting::configValue() const
{
    return ZIQTool::dictionary2JsonStr(configDictionary());
}

ZIQGroupNoteSettingPtr ZIQGroupNoteSetting::settingWithConfigValue(const QString &value)
{
    const QJsonObject config = ZIQTool::jsonData2Dictionary(value.toUtf8());
    const quint64 deadline = ZIQGroupNoteJsonValue::toUInt64(config.value(QLatin1String("deadline")));
    return std::make_shared<ZIQGroupNoteSetting>(
        ZIQGroupNoteJsonValue::toBool(config.value(QLatin1String("multi_submit"))),
        ZIQGroupNoteJsonValue::toBool(config.value(QLatin1String("notify"))), static_cast<double>(deadline));
}
