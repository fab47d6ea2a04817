// Messaging calls as tests make them: a send, and the look-ups and extension writes that wait
// (bounded) for their answer.
#pragma once

#include "CallOutcome.h"

#include "sdk/V2VORManager.h"

inline CallOutcome<> send(V2VORManager *client, const V2VORMessagePtr &message, const QString &groupID)
{
    CallOutcome<> sent;
    client->sendMessage(
        message, {}, groupID, V2VOR_PRIORITY_DEFAULT, false, std::nullopt, {}, sent.done(), sent.fail());
    return sent;
}

/// The message once sent, or null when the send failed or never answered.
inline V2VORMessagePtr sent(V2VORManager *client, const V2VORMessagePtr &message, const QString &groupID)
{
    const CallOutcome<> outcome = send(client, message, groupID);
    return outcome.wait() && outcome.code() == 0 ? message : nullptr;
}

inline V2VORMessagePtr sendToGroup(
    V2VORManager *client, const QString &groupID, const QByteArray &data, bool supportExtension = true)
{
    V2VORMessagePtr message = client->createCustomMessage(data);
    message->setSupportMessageExtension(supportExtension);
    return sent(client, message, groupID);
}

inline V2VORMessagePtr sendText(V2VORManager *client, const QString &groupID, const QString &text)
{
    return sent(client, client->createTextMessage(text), groupID);
}

/// The client's own copy of a message: null unless it sent, received or fetched it.
inline V2VORMessagePtr localCopy(V2VORManager *client, const QString &msgID)
{
    CallOutcome<QList<V2VORMessagePtr>> found;
    client->findMessages({ msgID, QStringLiteral("missing") }, found.succ(), found.fail());
    return found.wait() ? found.value().value(0) : nullptr;
}

inline CallOutcome<QList<V2VORMessageExtensionResult>> setExtensions(
    V2VORManager *client, const V2VORMessagePtr &message, const QList<V2VORMessageExtension> &extensions)
{
    CallOutcome<QList<V2VORMessageExtensionResult>> outcome;
    client->setMessageExtensions(message, extensions, outcome.succ(), outcome.fail());
    outcome.wait();
    return outcome;
}
