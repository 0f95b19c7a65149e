#include "dev/ChildIO.h"

#include "dev/ChildLoop.h"
#include "dev/guardian/GuardianMessage.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lmp {

namespace {

#ifdef MSG_NOSIGNAL
constexpr int sendFlags = MSG_NOSIGNAL | MSG_DONTWAIT;
#else
constexpr int sendFlags = MSG_DONTWAIT; // the socket itself raises no signal there
#endif

/// As it is handed on when the output is taken as it comes.
constexpr qsizetype chunkSize = 128 * 1024;

/// What a queued batch costs beside its bytes.
constexpr std::size_t batchCost = 128;

/// At the end. Each takes 16 KiB, and a pipe holds 64.
constexpr int errorReads = 5;

/// For the guardian's word: it has only to start one program, on a machine that may be busy.
constexpr int startLimit = 20000;

void closeEnd(int &end) {
    if (end >= 0)
        ::close(std::exchange(end, -1));
}

/// @return whether there may be more; what it read of none is the end
enum class Read { Some, Later, End };
Read readEnd(int end, char *into, std::size_t room, qsizetype &size) {
    const ssize_t n = ::read(end, into, room);
    size = n > 0 ? n : 0;
    if (n > 0)
        return Read::Some;
    return n < 0 && (errno == EAGAIN || errno == EINTR) ? Read::Later : Read::End;
}

bool isReadable(int end) {
    pollfd readable = {end, POLLIN, 0};
    return end >= 0 && ::poll(&readable, 1, 0) > 0;
}

QString systemText(int error, const QString &what) {
    return QString::fromLocal8Bit(std::strerror(error)) + QStringLiteral("：") + what;
}

DevProcess::Exit decode(int status) {
    if (WIFSIGNALED(status))
        return {.signal = WTERMSIG(status)};
    return {.code = WEXITSTATUS(status)};
}

} // namespace

ChildIO::ChildIO(ChildSpawn spawned, DevProcess::Output kind)
    : m_guardian(spawned.guardian)
    , m_kind(kind)
    , m_outputEnd(spawned.output)
    , m_errorEnd(spawned.error)
    , m_control(spawned.control)
    , m_inputEnd(spawned.input) {
    m_output.whenRoom([room = m_room] {
        *room = true;
        ChildLoop::shared().wake();
    });
}

ChildIO::~ChildIO() {
    // The guardian takes the end of the socket for ours.
    for (int *end : {&m_control, &m_inputEnd, &m_outputEnd, &m_errorEnd})
        closeEnd(*end);
}

std::expected<void, DevProcess::Failure> ChildIO::awaitStart(const QString &program, const QString &directory) {
    pollfd word = {m_control, POLLIN, 0};
    int ready = 0;
    do {
        ready = ::poll(&word, 1, startLimit);
    } while (ready < 0 && errno == EINTR);
    GuardianMessage message{.kind = GuardianMessage::FailedProgram, .value = ETIMEDOUT};
    if (ready > 0 && ::recv(m_control, &message, sizeof message, MSG_WAITALL) != sizeof message)
        message = {GuardianMessage::FailedProgram, ECHILD};
    if (message.kind == GuardianMessage::Started) {
        m_pid = message.value;
        return {};
    }
    if (ready <= 0)
        ::kill(m_guardian, SIGKILL);
    announce();
    const bool directoryFailed = message.kind == GuardianMessage::FailedDirectory;
    return std::unexpected(
        DevProcess::Failure::launch(systemText(message.value, directoryFailed ? directory : program)));
}

bool ChildIO::write(QByteArray bytes) {
    {
        const std::scoped_lock guard(m_lock);
        if (m_inputEnd < 0 || m_inputClosing)
            return true;
        // A line that is longer than that waits alone.
        if (!m_toWrite.empty() && m_unread + bytes.size() > DevProcess::maxUnread)
            return false;
        m_unread += bytes.size();
        m_toWrite.push_back(std::move(bytes));
    }
    ChildLoop::shared().wake();
    return true;
}

void ChildIO::closeInput() {
    {
        const std::scoped_lock guard(m_lock);
        m_inputClosing = true;
    }
    ChildLoop::shared().wake();
}

void ChildIO::terminate(std::chrono::milliseconds grace) {
    closeInput();
    const std::scoped_lock guard(m_lock);
    if (m_control < 0)
        return;
    const auto value = static_cast<std::int32_t>(std::clamp<qint64>(grace.count(), 0, 3600 * 1000));
    const GuardianMessage message{.kind = GuardianMessage::Stop, .value = value};
    [[maybe_unused]] const ssize_t sent = ::send(m_control, &message, sizeof message, sendFlags);
    // In case somebody has stopped it. Its number is its own as long as the socket is open here: see `announce`.
    ::kill(m_guardian, SIGCONT);
}

void ChildIO::abandon() {
    const std::scoped_lock guard(m_lock);
    if (m_control < 0)
        return;
    // It alone knows what the child has started, so it is the last that may be killed.
    ::kill(m_guardian, SIGCONT);
    ::shutdown(m_control, SHUT_WR);
}

std::optional<DevProcess::Exit> ChildIO::exit() const {
    const std::scoped_lock guard(m_lock);
    return m_exit;
}

Channel<DevProcess::Exit> ChildIO::nextExit() {
    Channel<DevProcess::Exit> channel(1);
    const std::scoped_lock guard(m_lock);
    if (auto known = m_exit) {
        channel.tryPush(*known);
        channel.close();
    } else {
        std::erase_if(m_awaiting, [](const auto &waiting) { return waiting.isOver(); });
        m_awaiting.push_back(channel);
    }
    return channel;
}

bool ChildIO::waitForEnd(std::chrono::steady_clock::time_point deadline) const {
    std::unique_lock guard(m_lock);
    return m_ended.wait_until(guard, deadline, [this] { return m_exit.has_value(); });
}

QString ChildIO::stderrTail() const {
    const std::scoped_lock guard(m_lock);
    return m_stderr.text();
}

std::array<pollfd, ChildIO::descriptors> ChildIO::interests() {
    settleOutput();
    const std::scoped_lock guard(m_lock);
    if (m_inputClosing && m_toWrite.empty())
        closeEnd(m_inputEnd);
    // A batch that was refused holds the child back: the pipe is not read before it is gone.
    const bool reads = !waits() && !m_finishing;
    return {pollfd{m_control, POLLIN, 0}, pollfd{reads ? m_outputEnd : -1, POLLIN, 0}, pollfd{m_errorEnd, POLLIN, 0},
            pollfd{m_toWrite.empty() ? -1 : m_inputEnd, POLLOUT, 0}};
}

void ChildIO::handle(std::span<const pollfd> events) {
    // Errors first, so that who sees the output end finds what explains it.
    if (events[2].revents != 0)
        readError();
    if (events[1].revents != 0)
        readOutput();
    if (events[3].revents != 0)
        writeInput();
    if (events[0].revents != 0)
        readControl();
}

void ChildIO::readControl() {
    GuardianMessage message;
    const ssize_t size = ::recv(m_control, &message, sizeof message, MSG_DONTWAIT);
    if (size == sizeof message)
        onMessage(message);
    else if (size >= 0 || (errno != EAGAIN && errno != EINTR))
        end();
}

void ChildIO::onMessage(const GuardianMessage &message) {
    if (message.kind != GuardianMessage::Exited)
        return;
    const std::scoped_lock guard(m_lock);
    m_status = decode(message.value);
}

void ChildIO::readOutput() {
    const bool lines = m_kind == DevProcess::Output::Lines;
    if (!lines && m_chunk.size() < chunkSize)
        m_chunk.resize(chunkSize);
    const auto room = lines ? m_framer.room() : std::span(m_chunk.data(), static_cast<std::size_t>(chunkSize));
    qsizetype size = 0;
    switch (readEnd(m_outputEnd, room.data(), room.size(), size)) {
    case Read::Later:
        return;
    case Read::End:
        return stopReading();
    case Read::Some:
        break;
    }
    if (m_exitKnown)
        m_restLimit -= size;
    m_waiting.bytes = lines ? m_framer.take(size) : takeChunk(size);
    if (waits())
        deliver();
    if (m_framer.isBroken() || m_restLimit <= 0)
        stopReading();
}

/// The block itself when it is well filled, a copy of the right size otherwise.
QByteArray ChildIO::takeChunk(qsizetype size) {
    if (size < chunkSize / 2)
        return QByteArray(m_chunk.constData(), size);
    m_chunk.truncate(size);
    return std::exchange(m_chunk, QByteArray());
}

/// Hands on what waits, unless there is no room; what nobody wants is dropped.
void ChildIO::deliver() {
    const auto weight = static_cast<std::size_t>(m_waiting.bytes.capacity()) + batchCost;
    if (m_output.tryPush(m_waiting, weight) != detail::Pushed::Full)
        m_waiting = {};
}

void ChildIO::settleOutput() {
    if (m_outputEnd < 0)
        return;
    if (waits() && m_room->exchange(false))
        deliver();
    // Somebody who got away may hold the pipe open for ever.
    if (m_exitKnown && !waits() && !m_finishing && !isReadable(m_outputEnd))
        stopReading();
    if (m_finishing && !waits())
        closeOutput();
}

void ChildIO::stopReading() {
    m_finishing = true;
    if (m_kind == DevProcess::Output::Lines)
        m_waiting.bytes += m_framer.finish();
    if (waits())
        deliver();
    if (!waits())
        closeOutput();
}

void ChildIO::closeOutput() {
    if (m_framer.isBroken()) {
        // It weighs nothing and so finds room, however full the channel is.
        DevLines::Batch notice{.tooLong = true};
        m_output.tryPush(notice, 0);
    }
    m_output.close();
    closeEnd(m_outputEnd);
}

void ChildIO::readError() {
    char bytes[16 * 1024];
    qsizetype size = 0;
    const auto result = readEnd(m_errorEnd, bytes, sizeof bytes, size);
    if (result == Read::End)
        closeEnd(m_errorEnd);
    const std::scoped_lock guard(m_lock);
    m_stderr.feed({bytes, size});
}

void ChildIO::writeInput() {
    while (const auto next = nextInput()) {
        // Without the lock: whoever has more to write does not wait for the child.
        const auto rest = QByteArrayView(*next).sliced(m_written);
        const ssize_t size = ::write(m_inputEnd, rest.data(), static_cast<std::size_t>(rest.size()));
        if (size < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        const std::scoped_lock guard(m_lock);
        if (size < 0)
            return dropInput();
        m_written += size;
        if (m_written < next->size())
            return;
        m_unread -= next->size();
        m_toWrite.pop_front();
        m_written = 0;
    }
}

std::optional<QByteArray> ChildIO::nextInput() const {
    const std::scoped_lock guard(m_lock);
    return m_inputEnd < 0 || m_toWrite.empty() ? std::nullopt : std::optional(m_toWrite.front());
}

/// Nobody reads any more.
void ChildIO::dropInput() {
    closeEnd(m_inputEnd);
    m_toWrite.clear();
    m_written = m_unread = 0;
}

/// The guardian is gone, and with it, unless it was killed, everything the child has started.
void ChildIO::end() {
    m_exitKnown = true;
    // All that was written lies in the pipes. Whoever learns of the end shall find it, where there is room. There is an
    // end to it also when somebody who got away goes on writing.
    for (int reads = 0; reads < errorReads && isReadable(m_errorEnd); ++reads)
        readError();
    closeEnd(m_errorEnd);
    while (!waits() && !m_finishing && isReadable(m_outputEnd))
        readOutput();
    announce();
}

/// Waits for the guardian, whose number may be another's afterwards.
/// @return whether it was killed
bool ChildIO::reapGuardian() {
    {
        const std::scoped_lock guard(m_lock);
        closeEnd(m_control);
        dropInput();
    }
    int status = 0;
    pid_t reaped = 0;
    do {
        reaped = ::waitpid(m_guardian, &status, 0);
    } while (reaped < 0 && errno == EINTR);
    return reaped == m_guardian && WIFSIGNALED(status);
}

/// Says that the guardian is gone, to whoever waits for it.
void ChildIO::announce() {
    const bool killed = reapGuardian();
    // The system has ended the child itself; who is still in its group can be found too.
    if (killed && m_pid > 0)
        ::kill(-m_pid, SIGKILL);
    std::vector<Channel<DevProcess::Exit>> awaiting;
    {
        const std::scoped_lock guard(m_lock);
        m_status.unwatched = killed && m_pid > 0;
        m_exit = m_status;
        awaiting.swap(m_awaiting);
    }
    if (m_whenEnded)
        std::exchange(m_whenEnded, nullptr)();
    m_ended.notify_all();
    for (const auto &channel : awaiting) {
        auto exit = m_status;
        channel.tryPush(exit);
        channel.close();
    }
}

} // namespace lmp
