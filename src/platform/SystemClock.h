#pragma once

#include "platform/Clock.h"

namespace lmp {

/// The machine's own clock; `sleep` is a coarse timer on the calling thread's event loop.
class SystemClock : public Clock {
public:
    QDateTime now() const override;
    std::chrono::nanoseconds monotonic() const override;
    QCoro::Task<bool> sleep(std::chrono::milliseconds duration, std::stop_token stop) override;
};

} // namespace lmp
