#include "ServerCluster.h"

#include "platform/MainQueue.h"
#include "sdk/NetworkBackend.h"
#include "server/TokenAuthority.h"

ServerCluster::ServerCluster(const QString &store, int servers)
{
    const bool onNats = store == QLatin1String("nats");
    if (onNats) {
        m_nats.emplace();
        if (!m_nats->isRunning()) {
            m_error = m_nats->error();
            return;
        }
    }
    for (int i = 0; i < servers; ++i) {
        VorServerProcess::Options options;
        options.store = store;
        if (onNats)
            options.natsURL = m_nats->url();
        m_servers.push_back(std::make_unique<VorServerProcess>(options));
        if (!m_servers.back()->start()) {
            m_error = m_servers.back()->error();
            return;
        }
    }
}

// The servers go before the NATS server they lean on.
ServerCluster::~ServerCluster()
{
    m_servers.clear();
}

std::unique_ptr<MessagingBackend> ServerCluster::newBackend(int index)
{
    auto backend = std::make_unique<NetworkBackend>(m_servers.at(size_t(serverOf(index)))->url());
    if (m_backoff)
        backend->connection()->setBackoff(*m_backoff);
    m_backends.insert(index, backend.get());
    return backend;
}

QString ServerCluster::tokenFor(const QString &userID, bool isOperator) const
{
    const qint64 inAnHour = qint64(platform::MainQueue::now() / 1000) + 3600;
    return TokenAuthority(m_servers.front()->secret().toUtf8()).mint(userID, inAnHour, isOperator);
}
