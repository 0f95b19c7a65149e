#include "dev/DevProbe.h"

#include "core/Json.h"
#include "core/PoolAwaiter.h"
#include "dev/DevExecutable.h"
#include "dev/DevPool.h"
#include "dev/codex/CodexLogin.h"

#include <QDir>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto timeout = 15s;

struct ClaudeStatus {
    std::optional<bool> loggedIn = {};
    std::optional<QString> authMethod = {};
};
BOOST_DESCRIBE_STRUCT(ClaudeStatus, (), (loggedIn, authMethod))

QCoro::Task<std::optional<bool>> askClaude(QString path) {
    const auto ran = co_await DevProbe::ask(path, {u"auth"_s, u"status"_s});
    // It exits with 1 when nobody is signed in, so the exit code does not say whether there was an answer.
    co_return ran && !ran->timedOut ? DevProbe::claudeLogin(ran->output) : std::nullopt;
}

QCoro::Task<std::optional<bool>> askCodex(QString path) {
    const auto ran = co_await DevProbe::ask(path, {u"login"_s, u"status"_s});
    const auto said =
        ran && !ran->timedOut ? DevProbe::codexLogin(QString::fromUtf8(ran->output) + ran->errorText) : std::nullopt;
    if (said == true)
        co_return said;
    // It may need no account of Codex's own, which is more than that command knows.
    const auto usable = co_await CodexLogin::ask(path);
    co_return usable ? usable : said;
}

} // namespace

DevProbe::Tool DevProbe::claude() {
    return {.name = u"claude"_s,
            .missingHint = u"装 Claude Code CLI（npm i -g @anthropic-ai/claude-code 或官方安装器），装好后重新探测。"_s,
            .loggedOutHint = u"在终端里运行 claude，用你自己的账号完成登录；Lumenpair 不会读你的凭据。"_s,
            .login = askClaude};
}

DevProbe::Tool DevProbe::codex() {
    return {.name = u"codex"_s,
            .missingHint = u"装 Codex CLI（npm i -g @openai/codex），装好后重新探测。"_s,
            .loggedOutHint = u"在终端里运行 codex login，用你的 ChatGPT 账号完成登录；Lumenpair 不会读你的凭据。"_s,
            .login = askCodex};
}

QCoro::Task<std::expected<DevRun, DevProcess::Failure>> DevProbe::ask(QString path, QStringList arguments) {
    return DevRun::toCompletion(
        {.program = std::move(path), .arguments = std::move(arguments), .directory = QDir::homePath()}, timeout);
}

QCoro::Task<DevReadiness> DevProbe::run(Tool tool) {
    // Looking may ask the login shell for its PATH.
    const auto path =
        co_await PoolAwaiter([name = tool.name] { return DevExecutable::find(name); }, &DevPool::waiting());
    if (!path)
        co_return DevReadiness{.state = DevReadiness::State::missing, .detail = tool.missingHint};
    const auto version = co_await ask(*path, {u"--version"_s});
    const QString printed = version ? QString::fromUtf8(version->output).trimmed() : QString();
    if (!version || !version->isSuccess() || printed.isEmpty()) {
        auto unknown = DevReadiness::unknown(u"版本探测失败"_s);
        unknown.path = path;
        co_return unknown;
    }
    DevReadiness readiness = DevReadiness::unknown(u"装了，但读不到登录态"_s);
    readiness.path = path;
    readiness.version = printed;
    if (const auto loggedIn = co_await tool.login(*path)) {
        readiness.unknownReason.clear();
        readiness.state = *loggedIn ? DevReadiness::State::ready : DevReadiness::State::loggedOut;
        if (!*loggedIn)
            readiness.detail = tool.loggedOutHint;
    }
    co_return readiness;
}

std::optional<bool> DevProbe::claudeLogin(QByteArrayView output) {
    const auto status = Json::decode<ClaudeStatus>(output);
    return status ? status->loggedIn : std::nullopt;
}

std::optional<bool> DevProbe::codexLogin(const QString &output) {
    const QString text = output.toLower();
    if (text.contains("not logged in"_L1))
        return false;
    if (text.contains("logged in"_L1) || text.contains("api key configured"_L1))
        return true;
    return std::nullopt;
}

} // namespace lmp
