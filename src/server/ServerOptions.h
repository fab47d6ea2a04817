// How a vor-server listens, whom it trusts and what it keeps its data in.
#pragma once

#include "server/RateLimiter.h"

#include <QByteArray>
#include <QHostAddress>
#include <QString>

struct ServerOptions
{
    QHostAddress listenAddress = QHostAddress::LocalHost;
    /// 0 picks a free port.
    quint16 port = 0;
    /// The key tokens are signed with.
    QByteArray secret;
    RateLimiter::Limits limits;
    /// Seconds a connection has to say hello.
    int helloTimeoutMs = 10000;
    /// "memory" or "nats".
    QString store = QStringLiteral("memory");
    QString natsURL = QStringLiteral("nats://127.0.0.1:4222");
};
