// Balances and charges in whole Pip. A turn is charged when it completes, once, by its request id. Owned by
// SandboxServices; any thread. Failures are SandboxFailure.
#pragma once
#include <boost/json.hpp>
#include <cstdint>
#include <string>

namespace lmp::sandbox {

class SandboxDatabase;
struct SandboxOptions;

class PipLedger {
public:
    struct Receipt {
        std::int64_t charged = 0;
        std::int64_t balance = 0;
    };

    PipLedger(SandboxDatabase &database, const SandboxOptions &options);

    std::int64_t balanceOf(const std::string &userId);
    /// Throws 402 when the account cannot pay `cost` now.
    void requireFunds(const std::string &userId, std::int64_t cost);
    /// Takes `cost`, or what is left when turns side by side have used up the balance meanwhile: a completed turn never
    /// turns into a failed one. Charging a request id again changes nothing and returns the first receipt.
    Receipt charge(const std::string &userId, const std::string &requestId, std::int64_t cost);
    /// {"balance", "charges": [{requestId, amount, balance, chargedAt}]}, oldest first.
    boost::json::object statement(const std::string &userId);

private:
    SandboxDatabase &m_database;
    const SandboxOptions &m_options;
};

} // namespace lmp::sandbox
