#include "platform/Clock.h"

namespace platform {

Clock::~Clock() = default;

} // namespace platform
