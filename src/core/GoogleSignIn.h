#pragma once

#include "core/Site.h"
#include "core/WebAuthPresenter.h"

namespace lmp {

/// A deployment's Google client: where its pages are, and who we are to it.
struct GoogleProvider {
    QUrl authorizationEndpoint;
    QUrl tokenEndpoint;
    QString clientId;
    QString clientSecret; ///< some installed clients have one, which is no secret; may be empty

    /// The provider that a sandbox plays.
    static GoogleProvider sandbox(const Site &site);
};

/// Signing in with Google: authorization code with PKCE (RFC 7636) through the system's browser, ending in an ID token.
///
/// Owned by the application, UI thread. Nothing is kept: each attempt has its own state, nonce and verifier.
class GoogleSignIn : public QObject {
    Q_OBJECT
public:
    struct IdToken {
        QString text;
    };
    using Outcome = std::expected<IdToken, WebAuthFailure>;

    /// @param presenter outlives this
    GoogleSignIn(GoogleProvider provider, WebAuthPresenter &presenter);

    /// @param stop ends the attempt as cancelled
    QCoro::Task<Outcome> idToken(std::stop_token stop);

private:
    static QCoro::Task<Outcome> exchange(GoogleProvider provider, WebAuthPresenter::Grant grant, QString verifier,
                                         QString nonce, std::stop_token stop);

    GoogleProvider m_provider;
    WebAuthPresenter &m_presenter;
};

} // namespace lmp
