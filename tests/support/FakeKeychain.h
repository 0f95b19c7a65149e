#pragma once

#include "platform/Keychain.h"
#include "platform/SleepAwaiter.h"

#include <QHash>
#include <QStringList>

#include <optional>

namespace lmp {

/// A keychain in memory that answers through the event loop, and can be made to hang, to fail and to be missing.
class FakeKeychain : public Keychain {
public:
    QHash<QString, QString> items; ///< by account
    QStringList log;               ///< each operation as it ends: "read", "write SECRET", "remove"
    std::optional<Error> error;    ///< what every operation ends with, when set
    int mostAtOnce = 0;            ///< of writes and removals

    /// What is under way refers to this object, which must not go before it.
    bool isIdle() const { return m_reading + m_changing == 0; }

    /// From here on nothing answers until `release`.
    void hang() { m_hangs = true; }
    void release() {
        m_hangs = false;
        std::exchange(m_gate, std::stop_source()).request_stop();
    }

    QCoro::Task<Result<std::optional<QString>>> read(QString, QString account) override {
        const Running one(m_reading);
        co_await pause();
        log.push_back(QStringLiteral("read"));
        if (error)
            co_return std::unexpected(*error);
        co_return items.contains(account) ? std::optional(items.value(account)) : std::nullopt;
    }
    QCoro::Task<Result<void>> write(QString, QString account, QString secret) override {
        const Running one(m_changing);
        mostAtOnce = std::max(mostAtOnce, m_changing);
        co_await pause();
        log.push_back(QStringLiteral("write ") + secret);
        if (error)
            co_return std::unexpected(*error);
        items.insert(account, secret);
        co_return Result<void>();
    }
    QCoro::Task<Result<void>> remove(QString, QString account) override {
        const Running one(m_changing);
        mostAtOnce = std::max(mostAtOnce, m_changing);
        co_await pause();
        log.push_back(QStringLiteral("remove"));
        if (error)
            co_return std::unexpected(*error);
        items.remove(account);
        co_return Result<void>();
    }

private:
    struct Running {
        explicit Running(int &counter)
            : count(counter) {
            ++count;
        }
        ~Running() { --count; }
        int &count;
    };

    SleepAwaiter pause() {
        using namespace std::chrono_literals;
        return SleepAwaiter(m_hangs ? 1h : 0ms, m_gate.get_token());
    }

    int m_reading = 0;
    int m_changing = 0;
    bool m_hangs = false;
    std::stop_source m_gate;
};

} // namespace lmp
