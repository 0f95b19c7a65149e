#include "terminal/DevGitCommand.h"

#include "dev/DevGit.h"

#include <QFileInfo>

#include <limits>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr int logLines = 20;

QString repositoryOf(const CommandLine &line) {
    return QFileInfo(line.dev.repo).absoluteFilePath();
}

/// The state of the repository; where it cannot be asked, it is said why not.
QCoro::Task<std::optional<DevGit::Status>> statusOf(Console *console, CommandLine line) {
    if (!QFileInfo(line.dev.repo).isDir()) {
        console->error(u"没有这个文件夹："_s + line.dev.repo);
        co_return std::nullopt;
    }
    auto state = co_await DevGit(repositoryOf(line)).status();
    if (state)
        co_return *std::move(state);
    console->error(state.error());
    co_return std::nullopt;
}

QString statusText(const DevGit::Status &status) {
    QString text = u"分支 "_s + status.branch.value_or(u"（没有，HEAD 游离）"_s) + u'\n';
    if (status.changed.isEmpty())
        text += u"没有改动\n"_s;
    for (const DevGit::Change &change : status.changed) {
        const QString from = change.formerly.isEmpty() ? QString() : change.formerly + u" → "_s;
        text += change.code + u' ' + from + change.path + u'\n';
    }
    return text;
}

} // namespace

QCoro::Task<ExitCode> DevGitCommand::show(Console *console, CommandLine line) {
    const auto status = co_await statusOf(console, line);
    if (!status)
        co_return ExitCode::Failed;
    const DevGit git(repositoryOf(line));
    if (line.gitView == "status"_L1) {
        console->reply(statusText(*status));
        co_return ExitCode::Submitted;
    }
    if (line.gitView == "diff"_L1) {
        // A terminal, or a program, takes all there is.
        const auto diff = co_await git.diff(std::numeric_limits<int>::max());
        console->reply(diff.text.endsWith(u'\n') ? diff.text : diff.text + u'\n');
        co_return diff.text == u"（git diff 失败）"_s ? ExitCode::Failed : ExitCode::Submitted;
    }
    const auto log = co_await git.log(logLines);
    if (log)
        console->reply(log->isEmpty() ? QString() : log->join(u'\n') + u'\n');
    else
        console->error(log.error());
    co_return log ? ExitCode::Submitted : ExitCode::Failed;
}

QCoro::Task<ExitCode> DevGitCommand::newWorktree(Console *console, CommandLine line) {
    if (!co_await statusOf(console, line))
        co_return ExitCode::Failed;
    console->note(DevGit::worktreeRule());
    const auto made = co_await DevGit(repositoryOf(line)).newWorktree(line.worktree);
    if (made)
        console->reply(made->text + u'\n');
    else
        console->error(made.error());
    co_return made ? ExitCode::Submitted : ExitCode::Failed;
}

} // namespace lmp
