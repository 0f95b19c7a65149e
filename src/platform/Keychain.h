#pragma once

#include <QCoroTask>
#include <QString>

#include <expected>
#include <optional>

namespace lmp {

/// The platform's keychain: generic-password items by service and account; a secret is UTF-8 text.
///
/// Owned by the application; called on the UI thread, answers later on it and never blocks it. An item that is not
/// there is no error. An error means the keychain could not be asked, so nothing is known of the item.
class Keychain {
public:
    struct Error {
        bool unavailable = false; ///< there is no keychain on this machine, or it is locked for good
        QString reason;           ///< the platform's own words
        bool refused = false;     ///< it is there and let nobody in: at the person's word, or since it stays locked
    };
    template <class T>
    using Result = std::expected<T, Error>;

    Keychain() = default;
    Keychain(const Keychain &) = delete;
    Keychain &operator=(const Keychain &) = delete;
    virtual ~Keychain() = default;

    virtual QCoro::Task<Result<std::optional<QString>>> read(QString service, QString account) = 0;
    /// Replaces the item: deletes it, then adds it, readable after the first unlock.
    virtual QCoro::Task<Result<void>> write(QString service, QString account, QString secret) = 0;
    virtual QCoro::Task<Result<void>> remove(QString service, QString account) = 0;
};

} // namespace lmp
