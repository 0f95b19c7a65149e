#pragma once

#include "platform/Settings.h"

#include <QStringList>

namespace lmp {

/// Remembers beyond the end of the program which items of the keychain are to go and may still be there: a keychain
/// that waits to be unlocked, or is only slow, outlives whoever asked it.
///
/// A value, UI thread. Names of accounts alone, and never a secret. Without settings nothing is remembered.
class PendingRemovals {
public:
    /// @param settings outlives this; may be null
    explicit PendingRemovals(Settings *settings)
        : m_settings(settings) {}

    bool contains(const QString &account) const { return accounts().contains(account); }
    void add(const QString &account);
    /// The item is gone, or another one that is wanted stands in its place.
    void drop(const QString &account);

private:
    QStringList accounts() const;

    Settings *m_settings;
};

} // namespace lmp
