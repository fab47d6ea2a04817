// Stands in for the conversation screen while the program has none: the chat's name under the
// navigation bar, so that opening a chat from the list leads somewhere.
#pragma once

#include "kit/chat/ZIQChatConversation.h"
#include "platform/ViewController.h"

class DemoChatPlaceholder : public platform::ViewController
{
    Q_OBJECT

public:
    DemoChatPlaceholder(const ZIQChatConversation &conversation, const QString &name, QObject *parent = nullptr);

    ZIQChatConversation conversation() const { return m_conversation; }

protected:
    QWidget *loadView() override;

private:
    ZIQChatConversation m_conversation;
};
