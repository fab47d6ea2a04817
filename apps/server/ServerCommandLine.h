// The vor-server command line: where to listen, the secret tokens are signed with, the store,
// a directory to seed, rate limits, or a token to mint instead of serving.
#pragma once

#include "server/ServerOptions.h"

#include <QStringList>
#include <optional>

struct ServerCommandLine
{
    ServerOptions options;
    QString directoryPath;
    /// Set for --mint-token: print a token for this user and exit.
    QString mintUser;
    bool mintOperator = false;
    qint64 mintTtlSeconds = 24 * 3600;

    /// Null with `error` saying what is wrong; `environmentSecret` is $VOR_SECRET.
    static std::optional<ServerCommandLine> parse(
        const QStringList &arguments, const QByteArray &environmentSecret, QString *error);
};
