// An event pushed by a messaging server, read into the call that hands it to a session.
#pragma once

#include "sdk/MessagingSession.h"
#include "sdk/ServiceProtocol.h"

#include <functional>

using SessionEvent = std::function<void(MessagingSession *session)>;

/// Empty for an event of an unknown kind or with ill-typed data.
SessionEvent readSessionEvent(const ServiceProtocol::ServerFrame &event);
