#include "dev/DevGit.h"

#include "core/PoolAwaiter.h"
#include "dev/GitOutput.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

enum class Purpose { Reading, Writing };

/// What a person may have set otherwise, before the command; the rest of it are options of the commands.
QStringList settings(Purpose purpose) {
    QStringList list{u"--no-pager"_s, u"-c"_s, u"color.ui=false"_s, u"-c"_s, u"core.quotePath=false"_s,
                     // What git would start in the background ends with the command.
                     u"-c"_s, u"gc.auto=0"_s, u"-c"_s, u"maintenance.auto=false"_s};
    if (purpose == Purpose::Reading)
        list += {u"-c"_s, u"core.fsmonitor=false"_s, u"-c"_s, u"core.hooksPath=/dev/null"_s};
    return list;
}

DevProcess::Command commandFor(const QString &repository, const QStringList &arguments, Purpose purpose) {
    DevProcess::Command command{
        .program = u"git"_s,
        .arguments = settings(purpose) + arguments,
        .directory = repository,
        .extra = {{u"GIT_TERMINAL_PROMPT"_s, u"0"_s},
                  {u"GIT_EDITOR"_s, u"true"_s},
                  {u"GIT_LITERAL_PATHSPECS"_s, u"1"_s}},
        // A program started from a hook would otherwise ask about the hook's repository.
        .without = {u"GIT_DIR"_s, u"GIT_WORK_TREE"_s, u"GIT_INDEX_FILE"_s, u"GIT_PREFIX"_s, u"GIT_OBJECT_DIRECTORY"_s,
                    u"GIT_COMMON_DIR"_s, u"GIT_NAMESPACE"_s},
    };
    if (purpose == Purpose::Reading)
        // Neither takes locks nor asks a remote, which would be reached by a program of the repository's choice.
        command.extra += {{u"GIT_OPTIONAL_LOCKS"_s, u"0"_s}, {u"GIT_NO_LAZY_FETCH"_s, u"1"_s}};
    return command;
}

/// Runs git. Fails only when there is none, or it could not be started.
QCoro::Task<DevGit::Answer<DevRun>> run(DevProcess::Command command, std::chrono::seconds timeout) {
    auto ended = co_await DevRun::toCompletion(std::move(command), timeout);
    if (ended)
        co_return *std::move(ended);
    const bool missing = ended.error().kind == DevProcess::Failure::Kind::NotFound;
    co_return std::unexpected(missing ? DevGit::missingText() : ended.error().description());
}

QCoro::Task<DevGit::Answer<DevRun>> run(QString repository, QStringList arguments, std::chrono::seconds timeout,
                                        Purpose purpose) {
    co_return co_await run(commandFor(repository, arguments, purpose), timeout);
}

/// The same for what looks at files, without the filters that the repository itself brings.
QCoro::Task<DevGit::Answer<DevRun>> look(QString repository, QStringList arguments) {
    // Exit code 1: there are none.
    const auto filters = co_await run(
        repository,
        {u"config"_s, u"--show-scope"_s, u"--null"_s, u"--get-regexp"_s, uR"(^filter\..*\.(clean|process)$)"_s}, 10s,
        Purpose::Reading);
    if (!filters)
        co_return std::unexpected(filters.error());
    auto command = commandFor(repository, arguments, Purpose::Reading);
    int count = qEnvironmentVariableIntValue("GIT_CONFIG_COUNT");
    const auto set = [&](const QString &key, const QString &value) {
        command.extra += {{u"GIT_CONFIG_KEY_%1"_s.arg(count), key}, {u"GIT_CONFIG_VALUE_%1"_s.arg(count), value}};
        ++count;
    };
    const auto names = GitOutput::ownFilters(filters->output);
    for (const QString &name : names) {
        set(name + u".clean"_s, {});
        set(name + u".process"_s, {});
        set(name + u".required"_s, u"false"_s);
    }
    command.extra.append({u"GIT_CONFIG_COUNT"_s, QString::number(count)});
    co_return co_await run(std::move(command), 30s);
}

/// What git said about a command that did not go well.
QString wordsOf(const DevRun &ended) {
    if (ended.timedOut)
        return u"git 太久没有完成，已经停下。"_s;
    const QString words = ended.errorText.trimmed();
    return words.isEmpty() ? QString::fromUtf8(ended.output).trimmed() : words;
}

/// The same, where only a success is of use.
QCoro::Task<DevGit::Answer<DevRun>> succeed(QString repository, QStringList arguments, std::chrono::seconds timeout,
                                            Purpose purpose) {
    auto ended = co_await run(repository, arguments, timeout, purpose);
    if (ended && !ended->isSuccess())
        co_return std::unexpected(wordsOf(*ended));
    co_return std::move(ended);
}

/// What is compared with: the last commit, or nothing at all before the first.
QCoro::Task<QString> baseOf(QString repository) {
    const auto head = co_await succeed(repository, {u"rev-parse"_s, u"--verify"_s, u"--quiet"_s, u"HEAD^{commit}"_s},
                                       10s, Purpose::Reading);
    if (head)
        co_return QString::fromUtf8(head->output).trimmed();
    const auto empty =
        co_await succeed(repository, {u"hash-object"_s, u"-t"_s, u"tree"_s, u"/dev/null"_s}, 10s, Purpose::Reading);
    co_return empty ? QString::fromUtf8(empty->output).trimmed() : u"HEAD"_s;
}

QCoro::Task<DevGit::Answer<DevRun>> runDiff(QString repository, QStringList form) {
    const QString base = co_await baseOf(repository);
    const QStringList arguments = QStringList{u"diff"_s,
                                              u"--no-color"_s,
                                              u"--no-ext-diff"_s,
                                              u"--no-textconv"_s,
                                              u"--no-relative"_s,
                                              u"--find-renames"_s,
                                              u"--submodule=short"_s,
                                              u"--src-prefix=a/"_s,
                                              u"--dst-prefix=b/"_s,
                                              u"--ignore-submodules=dirty"_s} +
                                  form + QStringList{base, u"--"_s};
    co_return co_await look(repository, arguments);
}

QCoro::Task<bool> checkRepository(QString repository) {
    const auto ended =
        co_await succeed(repository, {u"rev-parse"_s, u"--is-inside-work-tree"_s}, 10s, Purpose::Reading);
    co_return ended && ended->output.trimmed() == "true";
}

QCoro::Task<DevGit::Answer<DevGit::Status>> readStatus(QString repository) {
    const QStringList arguments{
        u"status"_s,         u"--porcelain=v1"_s,           u"--branch"_s, u"-z"_s, u"--untracked-files=all"_s,
        u"--find-renames"_s, u"--ignore-submodules=dirty"_s};
    const auto ended = co_await look(repository, arguments);
    if (!ended || !ended->isSuccess())
        co_return std::unexpected(ended ? wordsOf(*ended) : ended.error());
    co_return GitOutput::status(ended->output);
}

QCoro::Task<DevGit::Answer<QList<DevGit::NumStat>>> readNumstat(QString repository) {
    const auto ended = co_await runDiff(repository, {u"--numstat"_s, u"-z"_s});
    if (!ended || !ended->isSuccess())
        co_return std::unexpected(ended ? wordsOf(*ended) : ended.error());
    co_return GitOutput::numstat(ended->output);
}

QCoro::Task<DevGit::Text> readDiff(QString repository, int limit) {
    const auto ended = co_await runDiff(repository, {u"--patch"_s});
    if (!ended)
        co_return DevGit::Text{ended.error()};
    if (!ended->isSuccess())
        co_return DevGit::Text{u"（git diff 失败）"_s};
    const QByteArray output = ended->output;
    const auto text = co_await PoolAwaiter([output, limit] { return GitOutput::diff(output, limit); });
    co_return DevGit::Text{text};
}

QCoro::Task<DevGit::Answer<QStringList>> readLog(QString repository, int count) {
    const QStringList arguments{u"-c"_s,         u"log.showSignature=false"_s, u"log"_s,        u"--oneline"_s,
                                u"-n"_s,         QString::number(count),       u"--no-color"_s, u"--no-decorate"_s,
                                u"--no-patch"_s, u"--encoding=UTF-8"_s};
    const auto ended = co_await succeed(repository, arguments, 30s, Purpose::Reading);
    if (!ended)
        co_return std::unexpected(ended.error());
    co_return QString::fromUtf8(ended->output).split(u'\n', Qt::SkipEmptyParts);
}

/// What belongs to the selected files: the old names of renamed ones, and what git can still add. A deletion that is
/// staged already is in neither place where `add` looks.
struct Selection {
    QStringList committed;
    QStringList added;
};
Selection select(const QStringList &files, const DevGit::Status &status) {
    Selection selection{.committed = files, .added = files};
    for (const auto &change : status.changed) {
        if (!files.contains(change.path))
            continue;
        if (change.code.startsWith(u'D') && change.code.endsWith(u' '))
            selection.added.removeAll(change.path);
        if (change.code.contains(u'R') && !files.contains(change.formerly))
            selection.committed.append(change.formerly);
    }
    return selection;
}

QCoro::Task<DevGit::Answer<DevGit::Text>> topOf(QString repository) {
    const auto top = co_await succeed(repository, {u"rev-parse"_s, u"--show-toplevel"_s}, 10s, Purpose::Reading);
    if (!top)
        co_return std::unexpected(top.error());
    co_return DevGit::Text{QString::fromUtf8(top->output).chopped(1)};
}

QCoro::Task<DevGit::Answer<DevGit::Done>> commitFiles(QString repository, QStringList files, QString message) {
    if (files.isEmpty())
        co_return std::unexpected(u"没有选中要提交的文件"_s);
    const auto top = co_await topOf(repository);
    if (!top)
        co_return std::unexpected(top.error());
    const QString root = top->text;
    const auto status = co_await readStatus(root);
    if (!status)
        co_return std::unexpected(status.error());
    const Selection selection = select(files, *status);
    if (!selection.added.isEmpty()) {
        const auto added = co_await run(root, QStringList{u"add"_s, u"--"_s} + selection.added, 120s, Purpose::Writing);
        if (!added)
            co_return std::unexpected(added.error());
        if (!added->isSuccess())
            co_return std::unexpected(u"git add 失败"_s + wordsOf(*added));
    }
    const auto committed = co_await run(root, QStringList{u"commit"_s, u"-m"_s, message, u"--"_s} + selection.committed,
                                        120s, Purpose::Writing);
    if (!committed)
        co_return std::unexpected(committed.error());
    if (!committed->isSuccess())
        co_return std::unexpected(u"git commit 失败"_s + wordsOf(*committed));
    co_return DevGit::Done();
}

QCoro::Task<DevGit::Answer<DevGit::Text>> addWorktree(QString repository, QString name) {
    name = DevGit::worktreeName(name);
    if (name.isEmpty())
        co_return std::unexpected(u"名字不能为空"_s);
    // Beside the repository, wherever in it we are.
    const auto top = co_await topOf(repository);
    if (!top)
        co_return std::unexpected(top.error());
    const QString path = top->text + u".wt-"_s + name;
    const QStringList arguments{u"worktree"_s, u"add"_s, u"-b"_s, u"claude/"_s + name, path};
    const auto ended = co_await succeed(repository, arguments, 120s, Purpose::Writing);
    if (!ended)
        co_return std::unexpected(ended.error());
    co_return DevGit::Text{path};
}

} // namespace

QCoro::Task<bool> DevGit::isRepository() const {
    return checkRepository(m_repository);
}

QCoro::Task<DevGit::Answer<DevGit::Status>> DevGit::status() const {
    return readStatus(m_repository);
}

QCoro::Task<DevGit::Answer<QList<DevGit::NumStat>>> DevGit::numstat() const {
    return readNumstat(m_repository);
}

QCoro::Task<DevGit::Text> DevGit::diff(int limit) const {
    return readDiff(m_repository, limit);
}

QCoro::Task<DevGit::Answer<QStringList>> DevGit::log(int count) const {
    return readLog(m_repository, count);
}

QCoro::Task<DevGit::Answer<DevGit::Done>> DevGit::commit(QStringList files, QString message) const {
    return commitFiles(m_repository, std::move(files), std::move(message));
}

QCoro::Task<DevGit::Answer<DevGit::Text>> DevGit::newWorktree(QString name) const {
    return addWorktree(m_repository, std::move(name));
}

QString DevGit::worktreeName(QString name) {
    static const QRegularExpression disallowed(u"[^A-Za-z0-9_-]"_s);
    return name.replace(disallowed, u"-"_s);
}

QString DevGit::worktreeRule() {
    return u"仓库规矩：一会话 · 一 worktree · 一分支。会在旁边建 <仓库>.wt-<名字> 并切到分支 claude/<名字>。"_s;
}

QString DevGit::missingText() {
    return u"（这台 Mac 上没找到 git）"_s;
}

} // namespace lmp
