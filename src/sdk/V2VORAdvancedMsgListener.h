// Message events a client hears. Every operation is optional; a listener that is destroyed
// removes itself from every client and is never called again.
#pragma once

#include "sdk/V2VORMessage.h"
#include "sdk/V2VORMessageExtension.h"

#include <QStringList>

class V2VORAdvancedMsgListener
{
public:
    virtual ~V2VORAdvancedMsgListener();

    virtual void onRecvNewMessage(const V2VORMessagePtr &message);
    virtual void onRecvMessageModified(const V2VORMessagePtr &message);
    virtual void onRecvMessageExtensionsChanged(const QString &msgID, const QList<V2VORMessageExtension> &extensions);
    virtual void onRecvMessageExtensionsDeleted(const QString &msgID, const QStringList &extensionKeys);
};
