// The contract suite against clients on vor-server across loopback. CONTRACT_STORE names the
// server's store ("memory" or "nats"); CONTRACT_SERVERS how many servers share it. Clients are
// spread over the servers, so members of one group sit on different servers.
#include "ServerCluster.h"

std::unique_ptr<ServiceUnderTest> makeServiceUnderTest()
{
    return std::make_unique<ServerCluster>(QStringLiteral(CONTRACT_STORE), CONTRACT_SERVERS);
}
