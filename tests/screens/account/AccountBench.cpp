#include "AccountBench.h"

#include "core/Json.h"
#include "identity/SafetyExtraction.h"
#include "support/Await.h"

#include <QQmlEngine>

#include <algorithm>
#include <ranges>

void qml_register_types_Lumenpair_Kit();
void qml_register_types_Lumenpair_Account();

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

AccountBench::Parts::Parts(const QString &providers)
    : auth(server.url(u"/api"_s), keychain, clock)
    , webAuth(opener, clock) {
    if (providers.contains("apple"_L1))
        apple = std::make_unique<Apple>();
    if (providers.contains("google"_L1))
        google = std::make_unique<GoogleSignIn>(GoogleProvider::sandbox(Site::at(server.url().toString())), webAuth);
    const auto makeLogin = [this] {
        return std::make_unique<LoginModel>(auth, clock,
                                            LoginModel::Providers{.google = google.get(), .apple = apple.get()});
    };
    session = std::make_unique<SessionModel>(
        AccountServices{.auth = auth, .clock = clock, .makeLogin = makeLogin, .webAuth = &webAuth});
    safety = std::make_unique<SafetyModel>(store, opener);
    resources = std::make_unique<CrisisResourcesModel>(auth.api(), opener);
}

AccountBench::AccountBench()
    : m_parts(std::make_unique<Parts>(QString())) {}

AccountBench::~AccountBench() {
    m_past.push_back(std::move(m_parts));
    // The keychain's coroutines refer to it.
    for (const auto &parts : m_past) {
        parts->keychain.release();
        eventually([&] { return parts->keychain.isIdle(); });
    }
}

void AccountBench::replace(std::unique_ptr<Parts> next) {
    m_past.push_back(std::exchange(m_parts, std::move(next)));
    Q_EMIT restarted();
    Q_EMIT openedChanged();
}

void AccountBench::restart(const QString &providers) {
    auto next = std::make_unique<Parts>(providers);
    next->auth.startSignedOut();
    replace(std::move(next));
}

void AccountBench::restartClosed() {
    replace(std::make_unique<Parts>(QString()));
}

void AccountBench::answer(const QString &path, int status, const QString &body) {
    m_parts->server.on(path.toUtf8(), StubServer::reply(status, body.toUtf8()));
}

void AccountBench::hold(const QString &path) {
    m_parts->server.on(path.toUtf8(), [parts = m_parts.get()](const StubServer::Request &, QTcpSocket &socket) {
        parts->held.push_back(&socket);
    });
}

void AccountBench::release(int status, const QString &body) {
    for (const auto &socket : std::exchange(m_parts->held, {})) {
        if (socket)
            socket->write(StubServer::message(status, body.toUtf8()));
    }
}

int AccountBench::count(const QString &path) const {
    return int(std::ranges::count_if(m_parts->server.requests, [&](const StubServer::Request &request) {
        return request.path.startsWith(path.toUtf8());
    }));
}

QString AccountBench::sent(const QString &path) const {
    for (const auto &request : std::views::reverse(m_parts->server.requests)) {
        if (request.path.startsWith(path.toUtf8()))
            return QString::fromUtf8(request.body);
    }
    return {};
}

bool AccountBench::sentToken(const QString &path) const {
    return std::ranges::any_of(m_parts->server.requests, [&](const StubServer::Request &request) {
        return request.path.startsWith(path.toUtf8()) && request.headers.contains("x-access-token");
    });
}

void AccountBench::advance(int milliseconds) {
    m_parts->clock.advance(std::chrono::milliseconds(milliseconds));
}

void AccountBench::keychainHolds(const QString &token) {
    m_parts->keychain.items.insert(AuthStore::tokenKey, token);
}

void AccountBench::keychainHangs(bool hangs) {
    if (hangs)
        m_parts->keychain.hang();
    else
        m_parts->keychain.release();
}

void AccountBench::keychainFails(bool fails) {
    m_parts->keychain.error =
        fails ? std::optional(Keychain::Error{.unavailable = false, .reason = u"no"_s}) : std::nullopt;
}

void AccountBench::signIn(const QString &userJson) {
    const auto user = Json::decode<UserInfo>(userJson.toUtf8());
    m_parts->auth.signIn({.userInfo = user.value_or(UserInfo{.id = u"?"_s}), .token = u"t"_s, .type = {}});
}

void AccountBench::safetyArrives(const QString &answer) {
    const auto value = Json::decode<boost::json::value>(answer.toUtf8());
    if (!value)
        return;
    if (auto crisis = SafetyExtraction::crisis(*value))
        m_parts->store.show(*std::move(crisis));
    if (auto notice = SafetyExtraction::continuousUse(*value))
        m_parts->store.show(*std::move(notice));
}

void AccountBench::provide(QQmlEngine &engine) {
    static void (*const volatile modules[])() = {qml_register_types_Lumenpair_Kit,
                                                 qml_register_types_Lumenpair_Account};
    for (const auto &module : modules)
        static_cast<void>(module);
    engine.addImportPath(u"qrc:/qt/qml"_s);
    qmlRegisterSingletonType<AccountBench>("Lumenpair.AccountBench", 1, 0, "Bench",
                                           [](QQmlEngine *, QJSEngine *) { return new AccountBench; });
}

} // namespace lmp
