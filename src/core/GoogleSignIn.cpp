#include "core/GoogleSignIn.h"

#include "core/HTTPCall.h"
#include "core/Json.h"
#include "core/RequestURL.h"
#include "platform/Log.h"

#include <QCryptographicHash>
#include <QRandomGenerator>

namespace lmp {

using namespace Qt::StringLiterals;

/// What the token endpoint answers (OpenID Connect Core 3.1.3.3), under the names it uses.
struct GoogleTokenAnswer {
    QString id_token;
};
BOOST_DESCRIBE_STRUCT(GoogleTokenAnswer, (), (id_token))

/// The one claim that is ours to check; the service checks the signature and all others.
struct GoogleClaims {
    QString nonce;
};
BOOST_DESCRIBE_STRUCT(GoogleClaims, (), (nonce))

namespace {

constexpr qint64 maxAnswerBytes = 64 * 1024;
constexpr auto base64 = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;

/// 256 random bits as 43 characters that need no escape anywhere.
QString randomText() {
    quint32 bits[8];
    QRandomGenerator::system()->fillRange(bits);
    return QString::fromLatin1(QByteArray(reinterpret_cast<const char *>(bits), sizeof bits).toBase64(base64));
}

QString challengeOf(const QString &verifier) {
    const QByteArray digest = QCryptographicHash::hash(verifier.toLatin1(), QCryptographicHash::Sha256);
    return QString::fromLatin1(digest.toBase64(base64));
}

using Fields = std::initializer_list<std::pair<const char *, QString>>;

QByteArray form(const Fields &fields) {
    QByteArray text;
    for (const auto &[name, value] : fields) {
        if (!value.isEmpty())
            text += (text.isEmpty() ? "" : "&") + QByteArray(name) + '=' + QUrl::toPercentEncoding(value);
    }
    return text;
}

QUrl withQuery(QUrl url, const QByteArray &more) {
    const QByteArray already = url.query(QUrl::FullyEncoded).toLatin1();
    url.setQuery(QString::fromLatin1(already.isEmpty() ? more : already + '&' + more), QUrl::StrictMode);
    return url;
}

/// Whether the ID token was made for this attempt and not for another one (OpenID Connect Core 3.1.3.7, 11).
bool carriesNonce(const QString &token, const QString &nonce) {
    const auto parts = token.toLatin1().split('.');
    if (parts.size() != 3)
        return false;
    const auto claims = Json::decode<GoogleClaims>(QByteArray::fromBase64(parts[1], base64));
    return claims && claims->nonce == nonce;
}

WebAuthFailure unusable() {
    return {WebAuthFailure::Kind::Provider, u"登录没有完成：对方的答复用不了。"_s};
}

} // namespace

GoogleProvider GoogleProvider::sandbox(const Site &site) {
    const auto at = [&](const QString &path) {
        return RequestURL::join(site.root, path).value_or(QUrl());
    };
    return {at(u"/sandbox/google/authorize"_s), at(u"/sandbox/google/token"_s), u"lumenpair-desktop"_s, {}};
}

GoogleSignIn::GoogleSignIn(GoogleProvider provider, WebAuthPresenter &presenter)
    : m_provider(std::move(provider))
    , m_presenter(presenter) {}

QCoro::Task<GoogleSignIn::Outcome> GoogleSignIn::idToken(std::stop_token stop) {
    const GoogleProvider provider = m_provider;
    const QString state = randomText();
    const QString nonce = randomText();
    const QString verifier = randomText();
    const auto address = [=](const QUrl &redirectUri) {
        return withQuery(provider.authorizationEndpoint,
                         form({{"client_id", provider.clientId},
                               {"redirect_uri", redirectUri.toString(QUrl::FullyEncoded)},
                               {"response_type", u"code"_s},
                               {"scope", u"openid email profile"_s},
                               {"state", state},
                               {"nonce", nonce},
                               {"code_challenge", challengeOf(verifier)},
                               {"code_challenge_method", u"S256"_s}}));
    };
    const auto grant = co_await m_presenter.present(state, address, stop);
    if (!grant)
        co_return std::unexpected(grant.error());
    co_return co_await exchange(provider, *grant, verifier, nonce, stop);
}

QCoro::Task<GoogleSignIn::Outcome> GoogleSignIn::exchange(GoogleProvider provider, WebAuthPresenter::Grant grant,
                                                          QString verifier, QString nonce, std::stop_token stop) {
    const HTTPExchange::Request request{
        "POST",
        provider.tokenEndpoint,
        {{"Content-Type", "application/x-www-form-urlencoded"}, {"Accept", "application/json"}},
        form({{"grant_type", u"authorization_code"_s},
              {"code", grant.code},
              {"redirect_uri", grant.redirectUri.toString(QUrl::FullyEncoded)},
              {"client_id", provider.clientId},
              {"client_secret", provider.clientSecret},
              {"code_verifier", verifier}})};
    const auto outcome = co_await HTTPCall::run(request, URLSession::normal(), maxAnswerBytes, stop);
    if (stop.stop_requested())
        co_return std::unexpected(WebAuthFailure{WebAuthFailure::Kind::Cancelled, u"登录取消了。"_s});
    if (outcome.end != HTTPExchange::End::Complete) {
        co_return std::unexpected(WebAuthFailure{WebAuthFailure::Kind::Provider, u"登录没有完成：连不上对方。"_s});
    }
    const int status = outcome.status.value_or(0);
    const auto answer = Json::decode<GoogleTokenAnswer>(outcome.body);
    if (status < 200 || status > 299 || !answer || !carriesNonce(answer->id_token, nonce)) {
        qCWarning(logSession) << "the identity provider's token answer cannot be used, status" << status;
        co_return std::unexpected(unusable());
    }
    co_return IdToken{answer->id_token};
}

} // namespace lmp
