#pragma once

#include "core/AuthStore.h"
#include "core/LoginModel.h"

#include <functional>
#include <memory>

namespace lmp {

class WebAuthPresenter;

/// What the account's screens need of the application. A value; everything it refers to outlives whoever has it.
struct AccountServices {
    AuthStore &auth;
    Clock &clock;
    std::function<std::unique_ptr<LoginModel>()> makeLogin;
    WebAuthPresenter *webAuth = nullptr; ///< null where no provider signs in through a browser
    bool tokenIsGiven = false;           ///< the session came from the environment and is not ours to end
};

} // namespace lmp
