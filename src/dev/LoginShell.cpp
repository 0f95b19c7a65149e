#include "dev/LoginShell.h"

#include "dev/DevExecutable.h"
#include "dev/DevPool.h"
#include "dev/DevProcess.h"
#include "dev/DevProcessRegistry.h"

#include <QDir>
#include <QFile>
#include <QThreadPool>

#include <mutex>
#include <thread>

#include <pwd.h>
#include <unistd.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A person's start files may print what they like; the answer stands between two of these.
constexpr QByteArrayView mark = "--lumenpair-path--";

/// The answer is at the end.
constexpr qsizetype maxHeard = 256 * 1024;
constexpr auto listenInterval = 20ms;
constexpr auto restInterval = 1ms;

/// Interactive too: that is where version managers put themselves. The C shells take no other option beside -l, but
/// read the same file without any.
QStringList optionsOf(const QString &shell) {
    return shell.endsWith("csh"_L1) ? QStringList() : QStringList{u"-l"_s, u"-i"_s};
}

std::once_flag asked;
std::atomic_bool known = false;
/// Written once, before `asked` is done. Never destroyed: the program may leave while the shell is being asked.
QString &answer = *new QString;

QString shellOfUser() {
    const QString named = qEnvironmentVariable("SHELL");
    if (!named.isEmpty())
        return named;
    const passwd *const user = ::getpwuid(::getuid());
    return user ? QFile::decodeName(user->pw_shell) : QString();
}

QString pathIn(const QByteArray &output) {
    const auto from = output.indexOf(mark);
    const auto to = output.lastIndexOf(mark);
    if (from < 0 || from == to)
        return {};
    return QFile::decodeName(output.sliced(from + mark.size(), to - from - mark.size()).trimmed());
}

void ask() {
    std::call_once(asked, [] {
        const QString own = qEnvironmentVariable("PATH");
        answer = LoginShell::join(own, LoginShell::askFor(shellOfUser(), LoginShell::limit));
        known = true;
    });
}

} // namespace

QString LoginShell::applicationPath() {
    ask();
    return answer;
}

void LoginShell::prepare() {
    DevPool::waiting().start(&ask);
}

bool LoginShell::isKnown() {
    return known;
}

QString LoginShell::askFor(const QString &shell, std::chrono::milliseconds timeout) {
    if (!QDir::isAbsolutePath(shell))
        return {};
    const QString home = QDir::homePath();
    const QString question = u"echo %1; /usr/bin/printenv PATH; echo %1"_s.arg(QLatin1StringView(mark));
    const DevProcess::Command command{
        .program = shell,
        .arguments = optionsOf(shell) << u"-c"_s << question,
        .directory = home,
        .extra = {{u"TERM"_s, u"dumb"_s}},
        .output = DevProcess::Output::Bytes,
    };
    const auto environment =
        DevExecutable::childEnvironment(DevExecutable::ownEnvironment(), qEnvironmentVariable("PATH"), home);
    const auto process = DevProcess::launch(command, environment, DevProcessRegistry::shared());
    if (!process)
        return {};
    (*process)->closeStdin();
    const auto output = (*process)->output();
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    QByteArray text;
    bool ended = false, isWhole = false;
    do {
        // It is waited for piece by piece, since one that is not listened to is held back.
        if (ended)
            std::this_thread::sleep_for(restInterval);
        ended = (*process)->waitForEnd(listenInterval);
        isWhole = output.isOver();
        while (const auto batch = output.tryNext())
            text = (text + batch->bytes).last(std::min(text.size() + batch->bytes.size(), maxHeard));
        // What it said last may still be in the pipe when it is gone.
    } while (!(ended && isWhole) && std::chrono::steady_clock::now() < deadline);
    (*process)->terminate(0ms);
    output.cancel();
    return ended ? pathIn(text) : QString();
}

QString LoginShell::join(const QString &own, const QString &other) {
    QStringList directories = own.split(u':', Qt::SkipEmptyParts);
    for (const QString &directory : other.split(u':', Qt::SkipEmptyParts)) {
        if (!directories.contains(directory))
            directories.append(directory);
    }
    return directories.join(u':');
}

} // namespace lmp
