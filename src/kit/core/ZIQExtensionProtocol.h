// A module that answers queries of an extension point. Destroyed ones leave the registry.
#pragma once

#include "kit/core/ZIQExtensionInfo.h"

#include <QList>

class ZIQExtensionProtocol
{
public:
    virtual ~ZIQExtensionProtocol();
    /// The items offered for `extensionID`; empty for none.
    virtual QList<ZIQExtensionInfo> onGetExtension(const QString &extensionID, const QVariantMap &param) = 0;
};
