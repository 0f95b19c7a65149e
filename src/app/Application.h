#pragma once

#include "app/LocalInputRegistry.h"
#include "app/SandboxProcess.h"
#include "conversation/ChatWithTwinView.h"
#include "conversation/ConversationInputDraftStore.h"
#include "conversation/ConversationSearch.h"
#include "conversation/ExtractionProgress.h"
#include "core/AuthStore.h"
#include "core/CapabilityStore.h"
#include "core/LoginModel.h"
#include "core/SSEClient.h"
#include "core/Site.h"
#include "core/Telemetry.h"
#include "identity/SafetyGateStore.h"
#include "platform/ApplicationSupport.h"
#include "platform/SystemClock.h"
#include "platform/SystemOpener.h"

#include <QObject>

#include <chrono>
#include <expected>
#include <memory>
#include <optional>

namespace lmp {

/// Makes the long-lived stores, joins them and takes them down again, for the window and the terminal alike.
///
/// One for the process, made by main after the QCoreApplication and destroyed before it; UI thread. `open` says in one
/// sentence why it could not.
class Application : public QObject {
    Q_OBJECT
public:
    struct Options {
        QString site;                 ///< root of the service; empty is the sandbox that comes with the program
        QString downloads = {};       ///< where the service's builds lie; empty is below its root
        QString profile;              ///< empty is the person's own
        std::optional<QString> token; ///< a session token given from outside
        QString viewport;             ///< what the person looks at, for telemetry
        /// Neither token nor telemetry: nothing is read, recorded or sent but what is asked for.
        bool withoutTrace = false;
        std::chrono::nanoseconds processStartAt{0}; ///< on the monotonic clock
    };

    explicit Application(Options options);
    ~Application() override;

    /// Finds the service (starting the sandbox where that is it), makes the stores and begins to restore the session.
    QCoro::Task<std::expected<void, QString>> open();
    /// Lets what is still under way end: telemetry for 1 s at most, the keychain for 2 s, and what is being written for
    /// `filesLimit`, or for as long as it takes.
    /// @return false when something is still being written: this must not be destroyed, which would wait for it
    QCoro::Task<bool> close(std::optional<std::chrono::milliseconds> filesLimit = {});
    /// The last thing in main: ends what coding agents have started, and lets nothing more start. Blocks for 2.5 s at
    /// most, and not at all where nothing runs.
    static void endChildren();

    bool usesOwnSandbox() const { return m_options.site.isEmpty(); }
    bool tokenIsGiven() const { return m_options.token.has_value(); }

    // From here on: only after `open`.
    const Site &site() const { return m_site; }
    AuthStore &auth() { return *m_auth; }
    APIClient api() const { return m_auth->api(); }
    SSEClient events() const { return SSEClient(m_site.api, m_auth->tokenProvider()); }
    SafetyGateStore &safety() { return m_safety; }
    /// Empty until somebody refreshes it; a window does at its start, the terminal has no use for it.
    CapabilityStore &capabilities() { return *m_capabilities; }
    /// Null in a run without trace, as is `telemetry`.
    Settings *settings() { return m_settings.get(); }
    Telemetry *telemetry() { return m_telemetry.get(); }
    ExternalOpener &opener() { return m_opener; }
    Clock &clock() { return m_clock; }
    /// Where whoever holds something typed adds how to save it, for a quit.
    LocalInputRegistry &localInput() { return m_localInput; }
    /// Where this profile's files live.
    const ApplicationSupport &support() const { return m_support; }
    /// Sets this service's local records apart from those of others; empty for the sandbox that comes with the program.
    QString scope() const;
    ConversationDraftCache drafts() const { return ConversationDraftCache(m_support, scope()); }
    /// The search over conversations, made when it is first asked for.
    ConversationSearch &search();
    /// How far the conversations have been read for memories.
    ExtractionProgress &extractions() { return *m_extractions; }
    ConversationInputDraftStore inputs() const { return ConversationInputDraftStore(m_support, scope()); }
    /// The state of one sign-in, with the providers that this service has. The application outlives it.
    std::unique_ptr<LoginModel> makeLoginModel();
    WebAuthPresenter &webAuth() { return m_webAuth; }
    /// Who is signed in, as conversations ask for it.
    ConversationAccount account() const;
    /// Where a chat's stability events go.
    ChatWithTwinView::Recorder recorder() const;

private:
    QCoro::Task<std::expected<QString, QString>> findService();
    QCoro::Task<bool> filesSettledWithin(std::chrono::milliseconds limit);
    void makeStores();
    /// Remembers whose token this is, so that local records are found while the service cannot be asked.
    void rememberUser();
    std::optional<QString> rememberedUser() const;
    QByteArray tokenDigest() const;
    /// Google's client of this deployment, or none where it has none.
    std::optional<GoogleProvider> googleProvider() const;
    /// What sets this site's and profile's token apart in the keychain; empty for the ordinary ones.
    QString keychainSuffix() const;

    Options m_options;
    SystemClock m_clock;
    ApplicationSupport m_support;
    std::unique_ptr<SandboxProcess> m_sandbox;
    Site m_site;
    std::unique_ptr<Settings> m_settings;
    std::unique_ptr<Keychain> m_keychain;
    std::unique_ptr<AuthStore> m_auth;
    std::unique_ptr<Telemetry> m_telemetry;
    std::unique_ptr<CapabilityStore> m_capabilities;
    std::unique_ptr<ConversationSearch> m_search;
    std::unique_ptr<ExtractionProgress> m_extractions;
    LocalInputRegistry m_localInput;
    SafetyGateStore m_safety;
    SystemOpener m_opener;
    WebAuthPresenter m_webAuth;
    std::unique_ptr<GoogleSignIn> m_google;
    std::unique_ptr<AppleSignInCoordinator> m_apple;
};

} // namespace lmp
