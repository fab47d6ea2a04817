// JSON conversions and toasts, as every module of the kit uses them.
#pragma once

#include "kit/common/ZIQToastPosition.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

class ZIQTool
{
public:
    /// The JSON object in `data`; an empty object when `data` is not a JSON object.
    static QJsonObject jsonData2Dictionary(const QByteArray &data);
    /// Pretty-printed JSON.
    static QByteArray dictionary2JsonData(const QJsonObject &dictionary);
    static QString dictionary2JsonStr(const QJsonObject &dictionary);

    /// Shows `text` for `duration` seconds over the active window. A duration that is not a
    /// positive number of seconds falls back to 3 seconds; empty text shows nothing.
    static void makeToast(
        const QString &text, double duration = 3.0, ZIQToastPosition position = ZIQToastPosition::Center);
};
