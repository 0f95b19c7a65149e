#pragma once

#include "core/UserInfo.h"

namespace lmp {

/// The script that hands the session to one of the service's own web pages, run before the page's first line.
///
/// Free of state; any thread. It holds the token: it goes to pages of the service's own origin only, and to no log.
class SessionScript {
public:
    /// Stores {"token", "user"} under "lmp-app-session-v1" of the page's local storage. The text is safe inside a
    /// script, whatever the values hold.
    static QString text(const QString &token, const std::optional<UserInfo> &user);
};

} // namespace lmp
