#pragma once

#include "dev/ChildSpawn.h"
#include "dev/DevProcess.h"
#include "dev/LineFramer.h"
#include "dev/StderrTail.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <poll.h>

namespace lmp {

struct GuardianMessage;

/// The pipes of one child: what DevProcess asks of it, and what ChildLoop does for it.
///
/// Shared by the process object, the registry and the loop. The upper functions may be called from any thread, the
/// lower ones from the loop's alone, once `awaitStart` is through.
class ChildIO : public std::enable_shared_from_this<ChildIO> {
public:
    /// Output that waits for its consumer, in bytes; a longer line waits alone.
    static constexpr std::size_t maxWaiting = 1024 * 1024;
    static constexpr int descriptors = 4;
    /// More than fits into a pipe was not there yet when the child ended: it comes from somebody who got away.
    static constexpr qsizetype maxRest = 1024 * 1024;

    ChildIO(ChildSpawn spawned, DevProcess::Output kind);
    ~ChildIO();
    ChildIO(const ChildIO &) = delete;
    ChildIO &operator=(const ChildIO &) = delete;

    /// Waits for the guardian's word on the start. The launching thread, once, before the loop has it.
    std::expected<void, DevProcess::Failure> awaitStart(const QString &program, const QString &directory);

    QUuid ownershipID() const { return m_ownershipID; }
    pid_t pid() const { return m_pid; }
    const Channel<DevLines::Batch> &output() const { return m_output; }
    /// Called once, on the loop's thread, when the child has ended; set before the loop has it.
    void whenEnded(std::function<void()> call) { m_whenEnded = std::move(call); }

    /// @return false when too much waits already
    bool write(QByteArray bytes);
    void closeInput();
    void terminate(std::chrono::milliseconds grace);
    /// For a child whose end is not waited for any longer: its guardian is told that the program is gone and ends what
    /// is left, in its own time.
    void abandon();
    std::optional<DevProcess::Exit> exit() const;
    /// Gives the exit once, and at once when it has ended already.
    Channel<DevProcess::Exit> nextExit();
    bool waitForEnd(std::chrono::steady_clock::time_point deadline) const;
    QString stderrTail() const;

    /// What to wait for; a place whose descriptor is -1 is ignored by poll.
    std::array<pollfd, descriptors> interests();
    void handle(std::span<const pollfd> events);
    /// Ended, and all its output is handed on.
    bool isDone() const { return m_exitKnown && m_outputEnd < 0; }

private:
    void readControl();
    void onMessage(const GuardianMessage &message);
    void readOutput();
    void readError();
    bool waits() const { return !m_waiting.bytes.isEmpty(); }
    void deliver();
    void settleOutput();
    void stopReading();
    void closeOutput();
    QByteArray takeChunk(qsizetype size);
    void writeInput();
    std::optional<QByteArray> nextInput() const;
    void dropInput();
    bool reapGuardian();
    void end();
    void announce();

    const QUuid m_ownershipID = QUuid::createUuid();
    const pid_t m_guardian;
    const DevProcess::Output m_kind;
    pid_t m_pid = -1;
    Channel<DevLines::Batch> m_output{maxWaiting};
    std::function<void()> m_whenEnded;

    // The loop's.
    int m_outputEnd;
    int m_errorEnd;
    LineFramer m_framer;
    QByteArray m_chunk;        ///< what is read into when the output is taken as it comes
    DevLines::Batch m_waiting; ///< read, and refused for want of room
    bool m_finishing = false;  ///< nothing more is read: what waits is the last
    bool m_exitKnown = false;
    qsizetype m_restLimit = maxRest; ///< how much is still read once the child has ended
    /// There may be room again. Shared with the channel, which may outlive this.
    std::shared_ptr<std::atomic_bool> m_room = std::make_shared<std::atomic_bool>(false);

    mutable std::mutex m_lock; ///< of all below
    mutable std::condition_variable m_ended;
    int m_control;
    int m_inputEnd;
    std::deque<QByteArray> m_toWrite;
    qsizetype m_written = 0; ///< of the first of them
    qsizetype m_unread = 0;  ///< of all of them together
    bool m_inputClosing = false;
    StderrTail m_stderr;
    DevProcess::Exit m_status{.signal = 9}; ///< as told; a guardian that is killed takes its own child along
    std::optional<DevProcess::Exit> m_exit;
    std::vector<Channel<DevProcess::Exit>> m_awaiting;
};

} // namespace lmp
