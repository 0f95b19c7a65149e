#pragma once

#include "core/AuthService.h"

namespace lmp {

/// The account that the program makes for itself in its own sandbox, so that talking needs nothing first.
///
/// Free of state. Signs in by a code that the sandbox hands back; another service hands none back and is refused.
class LocalAccount {
public:
    static QCoro::Task<Result<AuthResponse>> signIn(AuthService service);
};

} // namespace lmp
