// Accounts: finding, creating and changing them, by each way of signing in. Owned by SandboxServices; any thread.
// Failures are SandboxFailure.
#pragma once
#include "SandboxAccount.h"
#include "SandboxContact.h"
#include <optional>

namespace SQLite {
class Database;
}

namespace lmp::sandbox {

class SandboxDatabase;
struct SandboxOptions;

/// What an identity provider vouches for.
struct ProviderIdentity {
    std::string provider; ///< "google" or "apple"
    std::string subject;
    std::string email; ///< may be empty
    std::string name;  ///< may be empty
};

class SandboxAccounts {
public:
    struct SignIn {
        SandboxAccount account;
        bool created = false;
    };

    SandboxAccounts(SandboxDatabase &database, const SandboxOptions &options);

    std::optional<SandboxAccount> byId(const std::string &id);
    /// The account of a phone number whose owner has just proved it is theirs; made when new.
    SignIn withPhone(const PhoneNumber &phone, const std::string &inviteCode);
    /// Throws 401 when account or password are wrong, without telling which.
    SignIn withPhonePassword(const std::string &phone, const std::string &password);
    SignIn withEmailPassword(const std::string &email, const std::string &password);
    bool emailIsTaken(const std::string &email);
    /// Throws 409 "email_taken".
    SignIn registerEmail(const std::string &email, const std::string &password, const std::string &inviteCode);
    /// The account of that identity; else the one with the same e-mail, linked from now on; else a new one.
    SignIn withProvider(const ProviderIdentity &identity);

    bool phoneIsKnown(const PhoneNumber &phone);
    void resetPhonePassword(const PhoneNumber &phone, const std::string &password);
    void resetEmailPassword(const std::string &email, const std::string &password);

    /// Throws 409 "handle_taken" when somebody else has it.
    void setHandle(const std::string &userId, const std::string &handle);
    /// The owner's id, or empty.
    std::string handleOwner(const std::string &handle);

    void setBalance(const std::string &userId, std::int64_t balance);

private:
    SandboxAccount blank() const;

    SandboxDatabase &m_database;
    const SandboxOptions &m_options;
};

} // namespace lmp::sandbox
