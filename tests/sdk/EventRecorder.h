// A message listener that keeps everything it hears, for tests to inspect; it listens to the
// client it is given from the start.
#pragma once

#include "sdk/V2VORAdvancedMsgListener.h"
#include "sdk/V2VORManager.h"

#include <QList>
#include <QPair>

class EventRecorder : public V2VORAdvancedMsgListener
{
public:
    explicit EventRecorder(V2VORManager *client = nullptr)
    {
        if (client)
            client->addAdvancedMsgListener(this);
    }
    void onRecvNewMessage(const V2VORMessagePtr &message) override { newMessages.append(message); }
    void onRecvMessageModified(const V2VORMessagePtr &message) override { modified.append(message); }
    void onRecvMessageExtensionsChanged(const QString &msgID, const QList<V2VORMessageExtension> &extensions) override
    {
        changed.append({ msgID, extensions });
    }
    void onRecvMessageExtensionsDeleted(const QString &msgID, const QStringList &keys) override
    {
        deleted.append({ msgID, keys });
    }

    QList<V2VORMessagePtr> newMessages;
    QList<V2VORMessagePtr> modified;
    QList<QPair<QString, QList<V2VORMessageExtension>>> changed;
    QList<QPair<QString, QStringList>> deleted;
};
