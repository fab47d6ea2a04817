// The contract suite against the in-process service, as the demo and the plug-in's tests use it.
#include "ServiceUnderTest.h"

#include "sdk/LocalBackend.h"
#include "sdk/MessagingServer.h"

namespace {

class InProcessService : public ServiceUnderTest
{
public:
    std::unique_ptr<MessagingBackend> newBackend(int) override { return std::make_unique<LocalBackend>(&m_server); }

private:
    MessagingServer m_server;
};

} // namespace

std::unique_ptr<ServiceUnderTest> makeServiceUnderTest()
{
    return std::make_unique<InProcessService>();
}
