// The wall clock and Qt's timers: what programs run on.
#pragma once

#include "platform/Clock.h"

namespace platform {

class SystemClock final : public Clock
{
public:
    double now() const override;
    void schedule(int delayMs, QObject *context, bool hasContext, Task task) override;
};

} // namespace platform
