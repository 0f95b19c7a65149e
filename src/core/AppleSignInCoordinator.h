#pragma once

#include "core/WebAuthFailure.h"

#include <QCoroTask>

#include <expected>
#include <optional>

namespace lmp {

/// The platform's own "sign in with Apple" sheet. Only some platforms have one; the button is offered where
/// `isAvailable`.
///
/// Owned by the application, UI thread.
class AppleSignInCoordinator {
public:
    struct Credential {
        QString identityToken;
        std::optional<QString> fullName;
    };
    using Outcome = std::expected<Credential, WebAuthFailure>;

    AppleSignInCoordinator() = default;
    AppleSignInCoordinator(const AppleSignInCoordinator &) = delete;
    AppleSignInCoordinator &operator=(const AppleSignInCoordinator &) = delete;
    virtual ~AppleSignInCoordinator() = default;

    virtual bool isAvailable() const { return false; }

    /// Shows the sheet. A sheet that ends well but without a token is a failure too.
    QCoro::Task<Outcome> signIn();

protected:
    /// The sheet itself; `identityToken` stays empty when none came back.
    virtual QCoro::Task<Outcome> present();
};

} // namespace lmp
