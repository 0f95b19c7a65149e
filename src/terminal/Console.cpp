#include "terminal/Console.h"

#include "core/PlainLabel.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace lmp {

Console::Console()
    : m_outputIsTerminal(::isatty(STDOUT_FILENO))
    , m_inputIsTerminal(::isatty(STDIN_FILENO))
    , m_color(::isatty(STDERR_FILENO) && qEnvironmentVariableIsEmpty("NO_COLOR")) {
    std::signal(SIGPIPE, SIG_IGN);
}

void Console::reply(const QString &text) {
    if (text.isEmpty())
        return;
    const QString shown = m_outputIsTerminal ? harmless(text) : text;
    write(STDOUT_FILENO, shown.toUtf8());
    m_midLine = m_outputIsTerminal && !shown.endsWith(u'\n');
}

void Console::line(const QByteArray &bytes) {
    // JSON escapes no C1 controls.
    write(STDOUT_FILENO, (m_outputIsTerminal ? harmless(QString::fromUtf8(bytes)).toUtf8() : bytes) + '\n');
}

void Console::note(const QString &text) {
    say(text, "\x1b[2m");
}

void Console::error(const QString &text) {
    say(text, "\x1b[31m");
}

void Console::card(const QString &text) {
    say(text, "\x1b[1;35m");
}

QString Console::harmless(const QString &text) {
    QString kept;
    kept.reserve(text.size());
    for (const QChar c : text) {
        if (!PlainLabel::acts(c))
            kept += c;
    }
    return kept;
}

void Console::say(const QString &text, const char *color) {
    QByteArray bytes;
    if (m_midLine && ::isatty(STDERR_FILENO))
        bytes += '\n';
    m_midLine = false;
    const QByteArray words = harmless(text).toUtf8();
    bytes += m_color ? color + words + "\x1b[0m\n" : words + '\n';
    write(STDERR_FILENO, bytes);
}

void Console::loseOutput(int code) {
    if (std::exchange(m_outputIsClosed, true) || code == EPIPE)
        return;
    error(QStringLiteral("写不进标准输出：") + QString::fromLocal8Bit(std::strerror(code)));
}

void Console::write(int fd, const QByteArray &bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, size_t(bytes.size() - done));
        if (n > 0) {
            done += n;
            continue;
        }
        if (errno == EAGAIN) {
            // Somebody we share the stream with made it non-blocking.
            pollfd room{fd, POLLOUT, 0};
            ::poll(&room, 1, -1);
        } else if (errno != EINTR) {
            return fd == STDOUT_FILENO ? loseOutput(errno) : void();
        }
    }
}

} // namespace lmp
