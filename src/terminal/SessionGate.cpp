#include "terminal/SessionGate.h"

#include "app/LocalAccount.h"
#include "core/PlainLabel.h"

namespace lmp {

using namespace Qt::StringLiterals;

QCoro::Task<std::optional<ExitCode>> SessionGate::pass(Application *application, Console *console) {
    auto &auth = application->auth();
    const auto waiting = QObject::connect(&auth, &AuthStore::waitingOnKeychainChanged, &auth, [&auth, console] {
        if (auth.waitingOnKeychain())
            console->note(u"正在等钥匙串回答……"_s);
    });
    co_await auth.settled();
    QObject::disconnect(waiting);
    if (auth.phase() == AuthStore::Phase::signedIn)
        co_return std::nullopt;
    if (auth.verificationFailed()) {
        console->note(u"没能核实登录（"_s + auth.verificationError()->reason + u"），先用现有的登录继续。"_s);
        co_return std::nullopt;
    }
    if (!application->usesOwnSandbox() || application->tokenIsGiven()) {
        console->error(application->tokenIsGiven() ? u"环境变量 LMP_TOKEN 里的登录无效或已过期。"_s
                                                   : u"还没有登录。先运行 lumenpair sign-in。"_s);
        co_return ExitCode::NotSignedIn;
    }
    const auto answer = co_await LocalAccount::signIn(auth.service());
    if (!answer) {
        console->error(u"没能登录本机沙盒："_s + answer.error().reason);
        co_return ExitCode::NotSignedIn;
    }
    auth.signIn(*answer);
    console->note(u"已自动登录本机沙盒里的本地账号（"_s +
                  PlainLabel::line(answer->userInfo.username.value_or(answer->userInfo.id)) +
                  u"），只在这台电脑上。"_s);
    co_return std::nullopt;
}

} // namespace lmp
