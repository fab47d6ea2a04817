// Makes the backend a server keeps its data in, by the options' store: "memory" (the in-process
// service, kept alive by this factory) or "nats" (a NATS JetStream cluster shared by servers).
#pragma once

#include "sdk/MessagingBackend.h"

#include <memory>

class MessagingServer;
struct ServerOptions;

class StoreFactory
{
public:
    StoreFactory();
    ~StoreFactory();

    /// Null with `error` saying why when the store is unknown or cannot be reached.
    std::unique_ptr<MessagingBackend> makeStore(const ServerOptions &options, QString *error);

private:
    std::unique_ptr<MessagingServer> m_memory;
};
