// The contract suite against clients on vor-server across loopback. CONTRACT_STORE names the
// server's store ("memory" or "nats"); CONTRACT_SERVERS how many servers share it. Clients are
// spread over the servers, so members of one group sit on different servers.
#include "ServiceUnderTest.h"
#include "support/NatsServerProcess.h"
#include "support/VorServerProcess.h"

#include "platform/MainQueue.h"
#include "sdk/NetworkBackend.h"
#include "server/TokenAuthority.h"

#include <optional>
#include <vector>

namespace {

class ServerService : public ServiceUnderTest
{
public:
    ServerService()
    {
        const bool onNats = QLatin1String(CONTRACT_STORE) == QLatin1String("nats");
        if (onNats) {
            m_nats.emplace();
            if (!m_nats->isRunning()) {
                m_error = m_nats->error();
                return;
            }
        }
        for (int i = 0; i < CONTRACT_SERVERS; ++i) {
            VorServerProcess::Options options;
            options.store = QStringLiteral(CONTRACT_STORE);
            if (onNats)
                options.natsURL = m_nats->url();
            m_servers.push_back(std::make_unique<VorServerProcess>(options));
            if (!m_servers.back()->start()) {
                m_error = m_servers.back()->error();
                return;
            }
        }
    }

    QString startError() const override { return m_error; }

    std::unique_ptr<MessagingBackend> newBackend(int index) override
    {
        return std::make_unique<NetworkBackend>(m_servers.at(size_t(index) % m_servers.size())->url());
    }

    QString storeURL() const override { return m_nats ? m_nats->url() : QString(); }

    QString tokenFor(const QString &userID, bool isOperator) const override
    {
        const qint64 inAnHour = qint64(platform::MainQueue::now() / 1000) + 3600;
        return TokenAuthority(m_servers.front()->secret().toUtf8()).mint(userID, inAnHour, isOperator);
    }

private:
    std::optional<NatsServerProcess> m_nats;
    std::vector<std::unique_ptr<VorServerProcess>> m_servers;
    QString m_error;
};

} // namespace

std::unique_ptr<ServiceUnderTest> makeServiceUnderTest()
{
    return std::make_unique<ServerService>();
}
