#pragma once

#include "platform/Keychain.h"
#include "platform/SleepAwaiter.h"

namespace lmp {

/// A keychain whose password nobody types: it never answers.
///
/// Owned by the scene that shows it, UI thread.
class GalleryKeychain : public Keychain {
public:
    QCoro::Task<Result<std::optional<QString>>> read(QString, QString) override {
        co_await silence();
        co_return std::nullopt;
    }
    QCoro::Task<Result<void>> write(QString, QString, QString) override {
        co_await silence();
        co_return Result<void>();
    }
    QCoro::Task<Result<void>> remove(QString, QString) override {
        co_await silence();
        co_return Result<void>();
    }

private:
    static SleepAwaiter silence() { return SleepAwaiter(std::chrono::hours(1), {}); }
};

} // namespace lmp
