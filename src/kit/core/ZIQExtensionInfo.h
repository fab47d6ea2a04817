// One item a module offers at an extension point (a "more" panel entry, for instance).
#pragma once

#include <QIcon>
#include <QString>
#include <QVariantMap>
#include <functional>

struct ZIQExtensionInfo
{
    /// Items are shown by descending weight.
    int weight = 0;
    QString text;
    QIcon icon;
    QVariantMap data;
    std::function<void(const QVariantMap &param)> onClicked;
};
