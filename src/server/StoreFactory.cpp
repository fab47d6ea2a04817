#include "server/StoreFactory.h"

#include "sdk/LocalBackend.h"
#include "sdk/MessagingServer.h"
#include "server/nats/NatsBackend.h"
#include "server/ServerOptions.h"

StoreFactory::StoreFactory() = default;

StoreFactory::~StoreFactory() = default;

std::unique_ptr<MessagingBackend> StoreFactory::makeStore(const ServerOptions &options, QString *error)
{
    if (options.store == QLatin1String("memory")) {
        if (!m_memory)
            m_memory = std::make_unique<MessagingServer>();
        return std::make_unique<LocalBackend>(m_memory.get());
    }
    if (options.store == QLatin1String("nats"))
        return NatsBackend::create(options.natsURL, error);
    if (error)
        *error = QStringLiteral("unknown store \"%1\" (memory or nats)").arg(options.store);
    return nullptr;
}
