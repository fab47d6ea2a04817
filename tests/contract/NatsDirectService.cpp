// The contract suite against the NATS store itself, without a server in front: two backends
// per service, as two server processes would hold, with clients spread over both.
#include "ServiceUnderTest.h"
#include "support/NatsServerProcess.h"

#include "server/nats/NatsBackend.h"

namespace {

class NatsDirectService : public ServiceUnderTest
{
public:
    QString startError() const override
    {
        if (!m_nats.isRunning())
            return m_nats.error();
        return m_error;
    }

    std::unique_ptr<MessagingBackend> newBackend(int index) override
    {
        QString error;
        std::unique_ptr<MessagingBackend> backend = NatsBackend::create(m_nats.url(), &error);
        if (!backend) {
            m_error = error;
            return nullptr;
        }
        Q_UNUSED(index);
        return backend;
    }

private:
    NatsServerProcess m_nats;
    QString m_error;
};

} // namespace

std::unique_ptr<ServiceUnderTest> makeServiceUnderTest()
{
    return std::make_unique<NatsDirectService>();
}
