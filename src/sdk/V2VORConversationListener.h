// Conversation events a client hears. A listener that is destroyed removes itself from every
// client and is never called again.
#pragma once

#include "sdk/V2VORConversation.h"

#include <QList>

class V2VORConversationListener
{
public:
    virtual ~V2VORConversationListener();

    /// New or changed conversations (a new message, a read mark), as this user now sees them.
    virtual void onConversationChanged(const QList<V2VORConversation> &conversations);
};
