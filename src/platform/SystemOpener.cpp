#include "platform/SystemOpener.h"

#include <QCoroProcess>

#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <chrono>
#include <memory>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// An opener that finds no program says so at once; one that goes on has found one.
constexpr auto soon = std::chrono::seconds(5);

/// RFC 3966 without its parameters: digits, the separators people write, and a leading '+' for a number of the world.
bool isTelephone(const QString &text) {
    QStringView number = QStringView(text).sliced(4);
    if (number.startsWith(u'+'))
        number = number.sliced(1);
    const auto isDigit = [](QChar c) {
        return c >= u'0' && c <= u'9';
    };
    const auto digits = std::ranges::count_if(number, isDigit);
    return digits >= 3 && digits <= 15 && number.size() <= 24 && isDigit(number.back()) &&
           std::ranges::all_of(number, [&](QChar c) { return isDigit(c) || u"-.()"_s.contains(c); });
}

bool hasDesktop() {
#ifdef Q_OS_LINUX
    // Without one the opener falls back to a browser inside our own terminal.
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#else
    return true;
#endif
}

/// Ready to be started with `url`; none where it may not be opened or nothing opens it.
std::unique_ptr<QProcess> opener(const QUrl &url) {
    if (!SystemOpener::mayOpen(url) || !hasDesktop())
        return nullptr;
#ifdef Q_OS_MACOS
    const QString program = u"/usr/bin/open"_s;
#else
    const QString program = QStandardPaths::findExecutable(u"xdg-open"_s);
#endif
    if (program.isEmpty())
        return nullptr;
    auto process = std::make_unique<QProcess>();
    process->setProgram(program);
    process->setArguments({url.toString(QUrl::FullyEncoded)});
    // What it prints is not ours to show, and what is typed here is not for it.
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    return process;
}

} // namespace

bool SystemOpener::mayOpen(const QUrl &url) {
    const QString text = url.toString(QUrl::FullyEncoded);
    if (text.startsWith("tel:"_L1))
        return isTelephone(text);
    return url.isValid() && (url.scheme() == "http"_L1 || url.scheme() == "https"_L1) && !url.host().isEmpty();
}

bool SystemOpener::open(const QUrl &url) {
    const auto process = opener(url);
    return process && process->startDetached();
}

QCoro::Task<bool> SystemOpener::openAndHear(QUrl url) {
    auto process = opener(url);
    if (!process)
        co_return false;
    process->start();
    co_await qCoro(*process).waitForFinished(soon);
    if (process->state() == QProcess::NotRunning)
        co_return process->error() == QProcess::UnknownError && process->exitCode() == 0;
    // It may be the program itself by now, and is not ours to end.
    auto *running = process.release();
    QObject::connect(running, &QProcess::finished, running, &QObject::deleteLater);
    co_return true;
}

} // namespace lmp
