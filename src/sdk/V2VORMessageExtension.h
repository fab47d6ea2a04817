// One key/value extension attached to a sent message.
#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

struct V2VORMessageExtension
{
    QString extensionKey;
    QString extensionValue;

    friend bool operator==(const V2VORMessageExtension &, const V2VORMessageExtension &) = default;
};

Q_DECLARE_METATYPE(V2VORMessageExtension)
Q_DECLARE_METATYPE(QList<V2VORMessageExtension>)
