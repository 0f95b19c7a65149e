#pragma once

#include <QString>

namespace lmp {

/// The Secret Service of a Linux session, asked for the one thing that takes neither a session with it nor the
/// libraries that make one: most starts of somebody signed out need no more.
///
/// Source: the Secret Service API of freedesktop.org, `org.freedesktop.Secret.Service.SearchItems`.
class SecretService {
public:
    /// Whether the Secret Service itself says that it holds no such item of QtKeychain's, locked or not. False also
    /// where nothing is known, and where the library would look elsewhere: then, and for everything else, ask the
    /// library. It is taken to find libsecret, as the package sees to. Waits for the answer, for a second at most; any
    /// thread but the UI's.
    static bool lacks(const QString &service, const QString &account);
};

} // namespace lmp
