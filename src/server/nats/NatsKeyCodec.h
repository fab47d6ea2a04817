// Turns arbitrary text (user, group and message IDs, extension keys) into one token of the
// key/value store's key alphabet and back. Tokens are the text's UTF-8 in base64url without
// padding, so dots, wildcards, spaces and emoji never reach a subject; the empty text is "=".
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

class NatsKeyCodec
{
public:
    static QByteArray encode(const QString &text);
    /// Null for a token encode() never writes.
    static std::optional<QString> decode(const QByteArray &token);
};
