// The messaging service as vor-server programs on loopback: one or more servers sharing one
// store ("memory" only makes sense with one server; "nats" runs a NATS server of its own).
// Clients are spread over the servers by their index (index % servers), so members of one
// group sit on different servers. Tests that crash parts of it reach the processes and the
// clients' backends through it.
#pragma once

#include "ServiceUnderTest.h"
#include "support/NatsServerProcess.h"
#include "support/VorServerProcess.h"

#include "sdk/NetworkConnection.h"

#include <QHash>

#include <optional>
#include <vector>

class NetworkBackend;

class ServerCluster : public ServiceUnderTest
{
public:
    ServerCluster(const QString &store, int servers);
    ~ServerCluster() override;

    QString startError() const override { return m_error; }
    std::unique_ptr<MessagingBackend> newBackend(int index) override;
    QString tokenFor(const QString &userID, bool isOperator) const override;
    QString storeURL() const override { return m_nats ? m_nats->url() : QString(); }

    /// Backends made from now on reconnect with this back-off.
    void setBackoff(const NetworkConnection::Backoff &backoff) { m_backoff = backoff; }
    /// The NATS server; null unless the store is "nats".
    NatsServerProcess *nats() { return m_nats ? &*m_nats : nullptr; }
    VorServerProcess &server(int i) { return *m_servers.at(size_t(i)); }
    /// Which server the client of `index` talks to.
    int serverOf(int index) const { return index % int(m_servers.size()); }
    /// The backend made for `index`; it lives as long as the client it was handed to.
    NetworkBackend *backend(int index) const { return m_backends.value(index); }

private:
    std::optional<NatsServerProcess> m_nats;
    std::vector<std::unique_ptr<VorServerProcess>> m_servers;
    std::optional<NetworkConnection::Backoff> m_backoff;
    QHash<int, NetworkBackend *> m_backends;
    QString m_error;
};
