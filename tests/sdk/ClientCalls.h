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

/// The sent message, or null when the send failed or never answered.
inline V2VORMessagePtr sendToGroup(
    V2VORManager *client, const QString &groupID, const QByteArray &data, bool supportExtension = true)
{
    V2VORMessagePtr message = client->createCustomMessage(data);
    message->setSupportMessageExtension(supportExtension);
    const CallOutcome<> sent = send(client, message, groupID);
    return sent.wait() && sent.code() == 0 ? message : nullptr;
}

/// The sent text message, or null when the send failed or never answered.
inline V2VORMessagePtr sendText(V2VORManager *client, const QString &groupID, const QString &text)
{
    const V2VORMessagePtr message = client->createTextMessage(text);
    const CallOutcome<> sent = send(client, message, groupID);
    return sent.wait() && sent.code() == 0 ? message : nullptr;
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
