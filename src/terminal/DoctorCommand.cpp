#include "terminal/DoctorCommand.h"

#include "core/Json.h"
#include "dev/DevEngineRegistry.h"
#include "platform/SystemClock.h"
#include "terminal/DevOutput.h"

#include <QStringList>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

using State = DevReadiness::State;

struct Finding {
    std::optional<QString> engine = {}; ///< none for git
    State state = State::unknown;
    std::optional<QString> path = {};
    std::optional<QString> version = {};
    std::optional<QString> detail = {};
};
BOOST_DESCRIBE_STRUCT(Finding, (), (engine, state, path, version, detail))

struct Report {
    QList<Finding> engines = {};
    Finding git = {};
};
BOOST_DESCRIBE_STRUCT(Report, (), (engines, git))

Finding finding(const DevReadiness &readiness, std::optional<QString> engine) {
    return {.engine = std::move(engine),
            .state = readiness.state,
            .path = readiness.path,
            .version = readiness.version,
            .detail = readiness.line()};
}

QString engineName(DevEngineKind kind) {
    return QString::fromLatin1(boost::describe::enum_to_string(kind, ""));
}

DevProbe::Tool git() {
    return {.name = u"git"_s,
            .missingHint = u"没有 git，看不了改动，也开不了工作区。"_s,
            // Nobody signs in to git.
            .login = [](QString) -> QCoro::Task<std::optional<bool>> {
                co_return true;
            }};
}

QString sentence(const QString &name, const Finding &found) {
    QStringList parts;
    switch (found.state) {
    case State::ready:
        parts << u"可用"_s;
        break;
    case State::missing:
        parts << u"没装"_s;
        break;
    case State::loggedOut:
        parts << u"没登录"_s;
        break;
    default:
        parts << u"不确定"_s;
    }
    for (const auto &part : {found.version, found.path, found.detail}) {
        if (part && !part->isEmpty())
            parts << *part;
    }
    return name + u"："_s + parts.join(u" · "_s) + u'\n';
}

} // namespace

QCoro::Task<ExitCode> DoctorCommand::run(Console *console, bool json) {
    SystemClock clock;
    auto probes = DevEngineRegistry::localProbes();
    probes.emplace(DevEngineKind::relay, []() -> QCoro::Task<DevReadiness> {
        co_return DevReadiness::unknown(u"这里不查 Lumenpair 的登录状态"_s);
    });
    DevEngineRegistry registry(clock, std::move(probes));
    co_await registry.probe();
    Report report{.git = finding(co_await DevProbe::run(git()), std::nullopt)};
    for (const auto kind : {DevEngineKind::claude, DevEngineKind::codex, DevEngineKind::relay})
        report.engines << finding(registry.readiness(kind), engineName(kind));
    if (json) {
        console->line(Json::encode(report));
    } else {
        console->reply(sentence(DevOutput::name(DevEngineKind::claude), report.engines[0]) +
                       sentence(DevOutput::name(DevEngineKind::codex), report.engines[1]) +
                       sentence(u"Lumenpair 中继"_s, report.engines[2]) + sentence(u"git"_s, report.git));
    }
    co_return ExitCode::Submitted;
}

} // namespace lmp
