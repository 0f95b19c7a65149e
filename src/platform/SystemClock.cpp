#include "platform/SystemClock.h"

#include "platform/SleepAwaiter.h"

namespace lmp {

QDateTime SystemClock::now() const {
    return QDateTime::currentDateTimeUtc();
}

std::chrono::nanoseconds SystemClock::monotonic() const {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

QCoro::Task<bool> SystemClock::sleep(std::chrono::milliseconds duration, std::stop_token stop) {
    co_return co_await SleepAwaiter(duration, std::move(stop));
}

} // namespace lmp
