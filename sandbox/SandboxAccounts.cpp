#include "SandboxAccounts.h"

#include "SandboxCrypto.h"
#include "SandboxDatabase.h"
#include "SandboxFailure.h"
#include "SandboxOptions.h"

namespace lmp::sandbox {

namespace {

std::optional<SandboxAccount> find(SQLite::Database &database, const std::string &condition,
                                   std::initializer_list<std::string> values) {
    SQLite::Statement select(database,
                             std::string("SELECT ") + SandboxAccount::columns + " FROM users WHERE " + condition);
    int index = 0;
    for (const auto &value : values)
        select.bind(++index, value);
    if (!select.executeStep())
        return std::nullopt;
    return SandboxAccount::fromRow(select);
}

void bindOrNull(SQLite::Statement &statement, int index, const std::string &value) {
    // Empty means absent, and only null escapes the uniqueness of a column.
    if (value.empty())
        statement.bind(index);
    else
        statement.bind(index, value);
}

void insert(SQLite::Database &database, const SandboxAccount &account, const std::string &invitedBy) {
    SQLite::Statement statement(database, std::string("INSERT INTO users(") + SandboxAccount::columns +
                                              ", invited_by) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    int index = 0;
    for (const auto *field :
         {&account.id, &account.phone, &account.dialCode, &account.email, &account.username, &account.handle,
          &account.inviteCode, &account.password, &account.googleSubject, &account.appleSubject})
        bindOrNull(statement, ++index, *field);
    statement.bind(++index, account.balance);
    statement.bind(++index, account.createdAt);
    bindOrNull(statement, ++index, invitedBy);
    statement.exec();
}

void update(SQLite::Database &database, const std::string &id, const std::string &column, const std::string &value) {
    SQLite::Statement statement(database, "UPDATE users SET " + column + " = ? WHERE id = ?");
    statement.bind(1, value);
    statement.bind(2, id);
    statement.exec();
}

SandboxAccounts::SignIn checkedPassword(const std::optional<SandboxAccount> &account, const std::string &password) {
    if (!account || account->password.empty() || !passwordMatches(password, account->password))
        throw SandboxFailure(401, "bad_credentials", "账号或密码不对。");
    return {*account, false};
}

} // namespace

SandboxAccounts::SandboxAccounts(SandboxDatabase &database, const SandboxOptions &options)
    : m_database(database)
    , m_options(options) {}

SandboxAccount SandboxAccounts::blank() const {
    SandboxAccount account;
    account.id = "u_" + randomHex(10);
    account.inviteCode = randomHex(4);
    account.balance = m_options.startingBalance;
    account.createdAt = m_options.now();
    return account;
}

std::optional<SandboxAccount> SandboxAccounts::byId(const std::string &id) {
    return m_database.read([&](SQLite::Database &database) { return find(database, "id = ?", {id}); });
}

SandboxAccounts::SignIn SandboxAccounts::withPhone(const PhoneNumber &phone, const std::string &inviteCode) {
    return m_database.write([&](SQLite::Database &database) -> SignIn {
        if (const auto known = find(database, "dial_code = ? AND phone = ?", {phone.dialCode, phone.digits}))
            return {*known, false};
        auto account = blank();
        account.phone = phone.digits;
        account.dialCode = phone.dialCode;
        account.username = "用户" + phone.digits.substr(phone.digits.size() - 4);
        insert(database, account, inviteCode);
        return {account, true};
    });
}

SandboxAccounts::SignIn SandboxAccounts::withPhonePassword(const std::string &phone, const std::string &password) {
    // The client sends no dial code here, so the mainland account comes first.
    return checkedPassword(m_database.read([&](SQLite::Database &database) {
        return find(database, "phone = ? AND password IS NOT NULL ORDER BY dial_code <> '+86', created_at", {phone});
    }),
                           password);
}

SandboxAccounts::SignIn SandboxAccounts::withEmailPassword(const std::string &email, const std::string &password) {
    return checkedPassword(
        m_database.read([&](SQLite::Database &database) { return find(database, "email = ?", {email}); }), password);
}

bool SandboxAccounts::emailIsTaken(const std::string &email) {
    return m_database.read(
        [&](SQLite::Database &database) { return find(database, "email = ?", {email}).has_value(); });
}

SandboxAccounts::SignIn SandboxAccounts::registerEmail(const std::string &email, const std::string &password,
                                                       const std::string &inviteCode) {
    auto account = blank();
    account.email = email;
    account.username = email.substr(0, email.find('@'));
    account.password = hashPassword(password);
    m_database.write([&](SQLite::Database &database) {
        if (find(database, "email = ?", {email}))
            throw SandboxFailure(409, "email_taken", "这个邮箱已经注册过，请直接登录。");
        insert(database, account, inviteCode);
    });
    return {account, true};
}

SandboxAccounts::SignIn SandboxAccounts::withProvider(const ProviderIdentity &identity) {
    const std::string column = identity.provider == "google" ? "google_subject" : "apple_subject";
    return m_database.write([&](SQLite::Database &database) -> SignIn {
        if (const auto known = find(database, column + " = ?", {identity.subject}))
            return {*known, false};
        if (!identity.email.empty() && find(database, "email = ?", {identity.email})) {
            const auto id = find(database, "email = ?", {identity.email})->id;
            update(database, id, column, identity.subject);
            return {*find(database, "id = ?", {id}), false};
        }
        auto account = blank();
        account.email = identity.email;
        account.username = !identity.name.empty()    ? identity.name
                           : !identity.email.empty() ? identity.email.substr(0, identity.email.find('@'))
                                                     : "用户" + account.inviteCode.substr(0, 4);
        (identity.provider == "google" ? account.googleSubject : account.appleSubject) = identity.subject;
        insert(database, account, {});
        return {account, true};
    });
}

bool SandboxAccounts::phoneIsKnown(const PhoneNumber &phone) {
    return m_database.read([&](SQLite::Database &database) {
        return find(database, "dial_code = ? AND phone = ?", {phone.dialCode, phone.digits}).has_value();
    });
}

void SandboxAccounts::resetPhonePassword(const PhoneNumber &phone, const std::string &password) {
    const auto hash = hashPassword(password);
    m_database.write([&](SQLite::Database &database) {
        if (const auto account = find(database, "dial_code = ? AND phone = ?", {phone.dialCode, phone.digits}))
            update(database, account->id, "password", hash);
    });
}

void SandboxAccounts::resetEmailPassword(const std::string &email, const std::string &password) {
    const auto hash = hashPassword(password);
    m_database.write([&](SQLite::Database &database) {
        if (const auto account = find(database, "email = ?", {email}))
            update(database, account->id, "password", hash);
    });
}

void SandboxAccounts::setHandle(const std::string &userId, const std::string &handle) {
    m_database.write([&](SQLite::Database &database) {
        const auto owner = find(database, "handle = ?", {handle});
        if (owner && owner->id != userId)
            throw SandboxFailure(409, "handle_taken", "这个名字已经有人用了。");
        update(database, userId, "handle", handle);
    });
}

std::string SandboxAccounts::handleOwner(const std::string &handle) {
    return m_database.read([&](SQLite::Database &database) {
        const auto owner = find(database, "handle = ?", {handle});
        return owner ? owner->id : std::string();
    });
}

void SandboxAccounts::setBalance(const std::string &userId, std::int64_t balance) {
    m_database.write([&](SQLite::Database &database) {
        SQLite::Statement statement(database, "UPDATE users SET balance = ? WHERE id = ?");
        statement.bind(1, balance);
        statement.bind(2, userId);
        statement.exec();
    });
}

} // namespace lmp::sandbox
