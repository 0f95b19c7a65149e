#include "terminal/DevGitCommand.h"

#include "dev/DevGit.h"
#include "dev/DevProcessRegistry.h"

#include <QFileInfo>

#include <limits>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr int logLines = 20;

QString repositoryOf(const CommandLine &line) {
    return QFileInfo(line.dev.repo).absoluteFilePath();
}

/// The repository can be asked; else it is said why not.
QCoro::Task<bool> isThere(Console *console, CommandLine line) {
    if (!QFileInfo(line.dev.repo).isDir()) {
        console->error(u"没有这个文件夹："_s + line.dev.repo);
        co_return false;
    }
    const auto state = co_await DevGit(repositoryOf(line)).status();
    if (!state)
        console->error(state.error());
    co_return state.has_value();
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
    const bool there = co_await isThere(console, line);
    ExitCode code = there ? ExitCode::Submitted : ExitCode::Failed;
    const DevGit git(repositoryOf(line));
    if (there && line.gitView == "status"_L1) {
        const auto status = co_await git.status();
        if (status)
            console->reply(statusText(*status));
    } else if (there && line.gitView == "diff"_L1) {
        // A terminal, or a program, takes all there is.
        const auto diff = co_await git.diff(std::numeric_limits<int>::max());
        console->reply(diff.text.endsWith(u'\n') ? diff.text : diff.text + u'\n');
        code = diff.text == u"（git diff 失败）"_s ? ExitCode::Failed : code;
    } else if (there) {
        const auto log = co_await git.log(logLines);
        if (log)
            console->reply(log->isEmpty() ? QString() : log->join(u'\n') + u'\n');
        else
            console->error(log.error());
        code = log ? code : ExitCode::Failed;
    }
    co_await DevProcessRegistry::shared().quit();
    co_return code;
}

QCoro::Task<ExitCode> DevGitCommand::newWorktree(Console *console, CommandLine line) {
    const bool there = co_await isThere(console, line);
    ExitCode code = ExitCode::Failed;
    if (there) {
        console->note(DevGit::worktreeRule());
        const auto made = co_await DevGit(repositoryOf(line)).newWorktree(line.worktree);
        if (made)
            console->reply(made->text + u'\n');
        else
            console->error(made.error());
        code = made ? ExitCode::Submitted : ExitCode::Failed;
    }
    co_await DevProcessRegistry::shared().quit();
    co_return code;
}

} // namespace lmp
