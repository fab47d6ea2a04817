// The outcome of writing or deleting one extension key. A conflict result carries the
// service's latest value of the key in `extension`.
#pragma once

#include "sdk/V2VORMessageExtension.h"

struct V2VORMessageExtensionResult
{
    int resultCode = 0;
    QString resultInfo;
    V2VORMessageExtension extension;
};

Q_DECLARE_METATYPE(V2VORMessageExtensionResult)
Q_DECLARE_METATYPE(QList<V2VORMessageExtensionResult>)
