#include "sdk/V2VORAdvancedMsgListener.h"

#include "sdk/V2VORManagerPrivate.h"

V2VORAdvancedMsgListener::~V2VORAdvancedMsgListener()
{
    for (V2VORManager *client : std::as_const(V2VORManager::Private::allClients()))
        client->removeAdvancedMsgListener(this);
}

void V2VORAdvancedMsgListener::onRecvNewMessage(const V2VORMessagePtr &)
{
}

void V2VORAdvancedMsgListener::onRecvMessageModified(const V2VORMessagePtr &)
{
}

void V2VORAdvancedMsgListener::onRecvMessageExtensionsChanged(const QString &, const QList<V2VORMessageExtension> &)
{
}

void V2VORAdvancedMsgListener::onRecvMessageExtensionsDeleted(const QString &, const QStringList &)
{
}
