#include "terminal/Console.h"

#include "core/PlainLabel.h"
#include "terminal/PromptLine.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace lmp {

namespace {

using namespace std::chrono_literals;

/// A prompt does not come and go between lines that follow each other.
constexpr auto betweenLines = 30ms;
/// Whoever says half a line may be thinking of the rest.
constexpr auto withinLine = 1500ms;

} // namespace

Console::Console()
    : m_outputIsTerminal(::isatty(STDOUT_FILENO))
    , m_inputIsTerminal(::isatty(STDIN_FILENO))
    , m_color(::isatty(STDERR_FILENO) && qEnvironmentVariableIsEmpty("NO_COLOR"))
    , m_errorIsTerminal(::isatty(STDERR_FILENO)) {
    m_back.setSingleShot(true);
    QObject::connect(&m_back, &QTimer::timeout, &m_back, [this] { bringBack(); });
    std::signal(SIGPIPE, SIG_IGN);
}

void Console::reply(const QString &text) {
    if (text.isEmpty())
        return;
    QString shown = m_outputIsTerminal ? harmless(text) : text;
    if (std::exchange(m_lineEnded, false) && shown.startsWith(u'\n'))
        shown.remove(0, 1);
    if (shown.isEmpty())
        return;
    m_midLine = m_outputIsTerminal && !shown.endsWith(u'\n');
    write(STDOUT_FILENO, shown.toUtf8());
}

void Console::endLine() {
    if (!std::exchange(m_midLine, false))
        return;
    m_lineEnded = true;
    write(STDOUT_FILENO, "\n");
}

QByteArray Console::room(int fd) {
    const bool isTerminal = fd == STDOUT_FILENO ? m_outputIsTerminal : m_errorIsTerminal;
    // A prompt that goes into a file is left there.
    if (!m_prompt || !isTerminal || !m_errorIsTerminal)
        return {};
    const QByteArray bytes = m_prompt->makeRoom();
    if (!bytes.isEmpty() || m_back.isActive())
        m_back.start(m_midLine ? withinLine : betweenLines);
    return bytes;
}

void Console::bringBack() {
    endLine();
    if (!m_queue.empty())
        return m_back.start();
    m_back.stop();
    if (m_prompt)
        m_prompt->comeBack();
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
    if (m_midLine && m_errorIsTerminal)
        bytes += '\n';
    m_midLine = m_lineEnded = false;
    const QByteArray words = harmless(text).toUtf8();
    bytes += m_color ? color + words + "\x1b[0m\n" : words + '\n';
    write(STDERR_FILENO, bytes);
}

void Console::loseOutput(int code) {
    if (std::exchange(m_outputIsClosed, true) || code == EPIPE)
        return;
    error(QStringLiteral("写不进标准输出：") + QString::fromLocal8Bit(std::strerror(code)));
}

QCoro::Task<> Console::drained() {
    if (m_queue.empty())
        co_return;
    const Later<bool> written;
    m_draining << written;
    co_await written;
}

void Console::hurry() {
    m_hurries = true;
    flush();
}

void Console::silence() {
    m_silent = true;
    m_queue.clear();
    flush();
}

void Console::write(int fd, QByteArray bytes) {
    if (m_silent || (fd == STDOUT_FILENO && m_outputIsClosed))
        return;
    bytes.prepend(room(fd));
    if (!m_queues)
        return writeNow(fd, bytes);
    m_queue.push_back({fd, bytes});
    flush();
}

void Console::writeNow(int fd, const QByteArray &bytes) {
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

/// Writes what finds room. The stream is not ours to make non-blocking: others may hold it too. So it is asked first,
/// and no more is written at once than a pipe with room takes.
void Console::flush() {
    while (!m_queue.empty()) {
        Piece &next = m_queue.front();
        const int fd = next.fd;
        pollfd room{fd, POLLOUT, 0};
        if (::poll(&room, 1, 0) <= 0)
            return waitForRoom(fd);
        const auto size = std::min<std::size_t>(PIPE_BUF, std::size_t(next.bytes.size()));
        const ssize_t n = ::write(fd, next.bytes.constData(), size);
        const int code = n < 0 ? errno : 0;
        if (n >= 0)
            next.bytes.remove(0, n);
        else if (code == EAGAIN)
            return waitForRoom(fd);
        if (code != 0 && code != EINTR) {
            std::erase_if(m_queue, [fd](const Piece &piece) { return piece.fd == fd; });
            if (fd == STDOUT_FILENO)
                loseOutput(code);
        } else if (next.bytes.isEmpty()) {
            m_queue.pop_front();
        }
    }
    stopWaiting();
    for (const auto &written : std::exchange(m_draining, {}))
        written.resolve(true);
}

void Console::waitForRoom(int fd) {
    if (m_hurries)
        return silence();
    if (m_room && m_room->socket() == fd)
        return;
    stopWaiting();
    m_room = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Write);
    QObject::connect(m_room.get(), &QSocketNotifier::activated, m_room.get(), [this] { flush(); });
}

void Console::stopWaiting() {
    if (!m_room)
        return;
    m_room->setEnabled(false);
    m_room.release()->deleteLater(); // it may be the one that has just called
}

} // namespace lmp
