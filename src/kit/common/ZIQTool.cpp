#include "kit/common/ZIQTool.h"

#include "platform/ToastCenter.h"

#include <QJsonDocument>
#include <QJsonParseError>
#include <QLoggingCategory>

#include <algorithm>
#include <cmath>

namespace {

Q_LOGGING_CATEGORY(lcTool, "ziq.kit.tool")

constexpr double DefaultToastSeconds = 3.0;

platform::ToastPosition toPlatform(ZIQToastPosition position)
{
    switch (position) {
    case ZIQToastPosition::Top:
        return platform::ToastPosition::Top;
    case ZIQToastPosition::Bottom:
        return platform::ToastPosition::Bottom;
    case ZIQToastPosition::Center:
        break;
    }
    return platform::ToastPosition::Center;
}

} // namespace

QJsonObject ZIQTool::jsonData2Dictionary(const QByteArray &data)
{
    if (data.isEmpty())
        return {};
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(data, &error);
    if (error.error != QJsonParseError::NoError) {
        qCDebug(lcTool) << "jsonData2Dictionary: not JSON:" << error.errorString() << "at" << error.offset;
        return {};
    }
    if (!document.isObject()) {
        qCDebug(lcTool) << "jsonData2Dictionary: JSON is not an object";
        return {};
    }
    return document.object();
}

QByteArray ZIQTool::dictionary2JsonData(const QJsonObject &dictionary)
{
    return QJsonDocument(dictionary).toJson(QJsonDocument::Indented);
}

QString ZIQTool::dictionary2JsonStr(const QJsonObject &dictionary)
{
    return QString::fromUtf8(dictionary2JsonData(dictionary));
}

void ZIQTool::makeToast(const QString &text, double duration, ZIQToastPosition position)
{
    if (!std::isfinite(duration) || duration <= 0)
        duration = DefaultToastSeconds;
    const int durationMs = static_cast<int>(std::lround(std::min(duration, 3600.0) * 1000));
    platform::ToastCenter::instance()->show(text, durationMs, toPlatform(position));
}
