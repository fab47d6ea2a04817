// Posts a custom message to a group and waits (bounded) until the service has accepted it.
#pragma once

#include "sdk/V2VORManager.h"

#include <QTest>

/// The sent message, or null when the send failed or never answered.
inline V2VORMessagePtr sendToGroup(
    V2VORManager *client, const QString &groupID, const QByteArray &data, bool supportExtension = true)
{
    V2VORMessagePtr message = client->createCustomMessage(data);
    if (!message)
        return nullptr;
    message->setSupportMessageExtension(supportExtension);
    auto answered = std::make_shared<int>(-1);
    client->sendMessage(
        message, {}, groupID, V2VOR_PRIORITY_DEFAULT, false, std::nullopt, {}, [answered] { *answered = 0; },
        [answered](int code, const QString &) { *answered = code; });
    if (!QTest::qWaitFor([answered] { return *answered != -1; }, 5000) || *answered != 0)
        return nullptr;
    return message;
}
