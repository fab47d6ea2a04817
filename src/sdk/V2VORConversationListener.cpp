#include "sdk/V2VORConversationListener.h"

#include "sdk/V2VORManagerPrivate.h"

V2VORConversationListener::~V2VORConversationListener()
{
    for (V2VORManager *client : std::as_const(V2VORManager::Private::allClients()))
        client->removeConversationListener(this);
}

void V2VORConversationListener::onConversationChanged(const QList<V2VORConversation> &)
{
}
