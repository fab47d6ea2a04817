// What the in-process service answers a client's call with: an error (code 0 for none) and,
// for extension calls, the per-key outcome and the key versions the caller has now seen.
#pragma once

#include "sdk/V2VORErrorCode.h"
#include "sdk/V2VORMessageExtension.h"
#include "sdk/V2VORMessageExtensionResult.h"
#include "sdk/V2VOROfflinePushInfo.h"

#include <QHash>
#include <QString>
#include <optional>

struct CallError
{
    int code = V2VOR_SUCC;
    QString desc;

    explicit operator bool() const { return code != V2VOR_SUCC; }
};

template<typename T> struct ServiceReply
{
    CallError error;
    T value {};
};

struct ExtensionReply
{
    CallError error;
    QString msgID;
    /// The message's live extensions (reads).
    QList<V2VORMessageExtension> extensions;
    /// One result per key written or deleted.
    QList<V2VORMessageExtensionResult> results;
    QHash<QString, quint64> versions;
};

/// How a message reached the service, as recorded for inspection.
struct SendRecord
{
    QString msgID;
    int priority = 0;
    bool onlineUserOnly = false;
    std::optional<V2VOROfflinePushInfo> offlinePushInfo;
};
