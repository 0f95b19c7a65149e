#include "app/Application.h"

#include "core/Detach.h"
#include "core/FilesSettled.h"
#include "core/RequestURL.h"
#include "dev/DevProcessRegistry.h"
#include "platform/FileThread.h"
#include "platform/SystemKeychain.h"
#include "platform/UserDefaults.h"

#include <QCryptographicHash>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Holds a digest of the token and the id of the user it was last verified for.
const QString userKey = u"lmp.session.user.v1"_s;

QCoro::Task<> stopWhenFilesSettle(std::stop_source settled) {
    co_await filesSettled();
    settled.request_stop();
}

} // namespace

Application::Application(Options options)
    : m_options(std::move(options))
    , m_support(m_options.profile)
    , m_webAuth(m_opener, m_clock) {}

Application::~Application() {
    // What closed windows gave to be written.
    FileThread::finish();
    Telemetry::install(nullptr);
}

QCoro::Task<std::expected<void, QString>> Application::open() {
    const QPointer self(this);
    const auto root = co_await findService();
    if (!self)
        co_return std::unexpected(QString());
    if (!root)
        co_return std::unexpected(root.error());
    m_site = Site::at(*root, m_options.downloads);
    if (!m_site.api.isValid())
        co_return std::unexpected(APIError::unusableURL().reason + u"："_s + *root);
    makeStores();
    co_return {};
}

QCoro::Task<std::expected<QString, QString>> Application::findService() {
    if (!usesOwnSandbox())
        // As const: returned as it is, the member would be moved out.
        co_return std::as_const(m_options.site);
    const auto folder = m_support.folder(u"Sandbox"_s);
    if (!folder)
        co_return std::unexpected(u"本机沙盒没有地方存数据：建不了文件夹 "_s + m_support.root() + u"/Sandbox"_s);
    m_sandbox = std::make_unique<SandboxProcess>(*folder + u"/sandbox.sqlite"_s);
    const auto outcome = m_sandbox->start();
    const auto url = co_await outcome;
    if (!url)
        co_return std::unexpected(url.error());
    co_return url->toString();
}

void Application::makeStores() {
    if (!m_options.withoutTrace)
        m_settings = makeUserDefaults(m_support);
    m_keychain = std::make_unique<SystemKeychain>();
    m_auth = std::make_unique<AuthStore>(m_site.api, *m_keychain, m_clock, keychainSuffix(), m_settings.get());
    m_capabilities = std::make_unique<CapabilityStore>(m_auth->api());
    m_extractions = std::make_unique<ExtractionProgress>(m_settings.get());
    if (m_options.withoutTrace) {
        m_auth->startSignedOut();
        return;
    }
    connect(m_auth.get(), &AuthStore::phaseChanged, this, &Application::rememberUser);
    m_telemetry = std::make_unique<Telemetry>(Telemetry::Deployment{.apiBase = m_site.api,
                                                                    .appVersion = QString::fromLatin1(LMP_VERSION),
                                                                    .viewport = m_options.viewport,
                                                                    .tokenProvider = m_auth->tokenProvider()},
                                              *m_settings, m_clock);
    Telemetry::install(m_telemetry.get());
    m_telemetry->startLifecycle(m_options.processStartAt);
    if (m_options.token)
        m_auth->startWith(*m_options.token);
    else
        m_auth->restore();
}

QCoro::Task<bool> Application::close(std::optional<std::chrono::milliseconds> filesLimit) {
    const QPointer self(this);
    if (m_telemetry)
        co_await m_telemetry->flushForExit(1s);
    if (self && m_auth)
        co_await m_auth->keychainSettled(2s);
    // Behind what is being written, so that whoever waits for it hears of it while there is a loop to be told by.
    if (filesLimit)
        co_return self &&co_await filesSettledWithin(*filesLimit);
    co_return co_await filesSettled();
}

QCoro::Task<bool> Application::filesSettledWithin(std::chrono::milliseconds limit) {
    const std::stop_source settled;
    detach(stopWhenFilesSettle(settled), "waiting for the files");
    co_return !co_await m_clock.sleep(limit, settled.get_token());
}

void Application::endChildren() {
    DevProcessRegistry::shared().quitAndWait();
}

void Application::rememberUser() {
    if (m_settings && m_auth->user())
        m_settings->setValue(userKey, tokenDigest() + ' ' + m_auth->user()->id.toUtf8());
}

std::optional<QString> Application::rememberedUser() const {
    if (!m_settings || !m_auth->verificationFailed())
        return std::nullopt;
    const QByteArray kept = m_settings->value(userKey).value_or(QByteArray());
    const QByteArray ours = tokenDigest() + ' ';
    return kept.startsWith(ours) ? std::optional(QString::fromUtf8(kept.sliced(ours.size()))) : std::nullopt;
}

QByteArray Application::tokenDigest() const {
    // Another site's token is another person's, though the two may be spelt the same.
    const QString token = keychainSuffix() + u'\n' + m_auth->token().value_or(QString());
    return QCryptographicHash::hash(token.toUtf8(), QCryptographicHash::Sha256).toHex();
}

ConversationAccount Application::account() const {
    const QPointer<const AuthStore> auth = m_auth.get();
    const QPointer<const Application> self(this);
    return {.userId = [auth, self]() -> std::optional<QString> {
                if (!auth || !self)
                    return std::nullopt;
                return auth->user() ? auth->user()->id : self->rememberedUser();
            },
            .generation =
                [auth] {
                    return auth ? QString::number(auth->authenticationGeneration()) : QString();
                }};
}

ConversationSearch &Application::search() {
    if (!m_search) {
        m_search = std::make_unique<ConversationSearch>(ConversationService(api()), drafts(), account(), m_support,
                                                        keychainSuffix(), m_clock);
        for (const auto signal :
             {&AuthStore::generationChanged, &AuthStore::phaseChanged, &AuthStore::verificationFailedChanged})
            connect(m_auth.get(), signal, m_search.get(), &ConversationSearch::recheckAccount);
    }
    return *m_search;
}

std::unique_ptr<LoginModel> Application::makeLoginModel() {
    if (const auto provider = googleProvider(); provider && !m_google)
        m_google = std::make_unique<GoogleSignIn>(*provider, m_webAuth);
    if (!m_apple)
        m_apple = std::make_unique<AppleSignInCoordinator>();
    return std::make_unique<LoginModel>(*m_auth, m_clock,
                                        LoginModel::Providers{.google = m_google.get(), .apple = m_apple.get()});
}

std::optional<GoogleProvider> Application::googleProvider() const {
    if (RequestURL::isLoopback(m_site.root))
        return GoogleProvider::sandbox(m_site);
    const QString clientId = QStringLiteral(LMP_GOOGLE_CLIENT_ID);
    if (clientId.isEmpty())
        return std::nullopt;
    return GoogleProvider{.authorizationEndpoint = QUrl(u"https://accounts.google.com/o/oauth2/v2/auth"_s),
                          .tokenEndpoint = QUrl(u"https://oauth2.googleapis.com/token"_s),
                          .clientId = clientId,
                          .clientSecret = QStringLiteral(LMP_GOOGLE_CLIENT_SECRET)};
}

ChatWithTwinView::Recorder Application::recorder() const {
    return [](const QString &event, const QString &subjectType, const QString &subjectId, const QVariantMap &props) {
        Telemetry::Props values;
        for (const auto &[key, value] : props.asKeyValueRange())
            values.insert(key, value.typeId() == QMetaType::QString ? JSONValue(value.toString())
                                                                    : JSONValue(value.toDouble()));
        Telemetry::note(event, {subjectType, subjectId}, values);
    };
}

QString Application::scope() const {
    return usesOwnSandbox() ? QString() : m_site.root.toString(QUrl::RemoveUserInfo | QUrl::StripTrailingSlash);
}

QString Application::keychainSuffix() const {
    QString suffix;
    if (!usesOwnSandbox())
        suffix += u'@' + scope();
    if (!m_options.profile.isEmpty())
        suffix += u'#' + m_options.profile;
    return suffix;
}

} // namespace lmp
