#pragma once

#include "dev/DevLines.h"

#include <QCoroTask>
#include <QStringList>
#include <QUuid>

#include <atomic>
#include <chrono>
#include <expected>
#include <memory>

namespace lmp {

class ChildIO;
class DevProcessRegistry;

/// One child: a coding agent or a short command, with its three pipes.
///
/// Shared by whoever uses it; made running or not at all. Every function may be called from any thread; what waits
/// resumes on the calling thread, which must run an event loop. The child leads a session and a process group of its
/// own, inherits no descriptor but its three pipes, and stands under a guardian process that ends all it has started,
/// whatever becomes of this program. It has ended when the whole of that is gone. Letting go of the last reference
/// ends it as `terminate` does.
class DevProcess {
    struct Key {};

public:
    /// Why a child could not be started.
    struct Failure {
        enum class Kind { NotFound, Launch };
        Kind kind = Kind::Launch;
        QString detail; ///< the name that was looked for, or the platform's words

        static Failure notFound(QString name) { return {Kind::NotFound, std::move(name)}; }
        static Failure launch(QString message) { return {Kind::Launch, std::move(message)}; }
        /// For the person, as it stands.
        QString description() const;
        bool operator==(const Failure &) const = default;
    };

    /// How a child ended.
    struct Exit {
        int code = 0;           ///< when it left by itself
        int signal = 0;         ///< otherwise what ended it
        bool unwatched = false; ///< its guardian was killed: what it has started may live on
        bool isSuccess() const { return code == 0 && signal == 0; }
        bool operator==(const Exit &) const = default;
    };

    /// What comes out of `lines()`.
    enum class Output {
        Lines, ///< valid UTF-8, line by line
        Bytes  ///< everything as it came, for `output()` alone
    };

    struct Command {
        QString program; ///< a name to be looked for ("claude"), or an absolute path
        QStringList arguments = {};
        QString directory = {};                        ///< the working directory; it must exist
        QList<std::pair<QString, QString>> extra = {}; ///< environment on top of what a child gets
        QStringList without = {};                      ///< names that it does not get
        Output output = Output::Lines;
    };

    /// What became of a start that was waited for.
    struct Started {
        std::expected<std::shared_ptr<DevProcess>, Failure> process;
    };

    /// Finds the program and starts it. Takes a few milliseconds, and the very first time up to three seconds (see
    /// LoginShell): not for the UI thread, which uses DevRun or `start`.
    static std::expected<std::shared_ptr<DevProcess>, Failure> launch(Command command);
    /// The same on a thread of its own. Once `stop` is requested it is not waited for any more, with a failure that
    /// nobody needs to see, and what starts all the same is ended.
    static QCoro::Task<Started> start(Command command, std::stop_token stop = {});
    static std::expected<std::shared_ptr<DevProcess>, Failure> launch(Command command, DevProcessRegistry &registry);

    /// With everything given: `program` a path, and the whole environment of the child but for `extra`.
    static std::expected<std::shared_ptr<DevProcess>, Failure> launch(Command command, QList<QByteArray> environment,
                                                                      DevProcessRegistry &registry);

    DevProcess(Key, std::shared_ptr<ChildIO> io);
    ~DevProcess();

    /// The key of this child in the registry.
    QUuid ownershipID() const;
    qint64 pid() const;

    /// What may wait for a child that does not read.
    static constexpr qsizetype maxUnread = 64 * 1024 * 1024;

    /// Its standard output by lines; to be asked for once. Ends when the child has ended.
    DevLines lines();
    /// The same as it came, for Output::Bytes. Whoever takes it cancels it in the end.
    Channel<DevLines::Batch> output();

    /// Writes `line` and a line feed; the line must have none itself. In the order of the calls, and never waits.
    /// Dropped once the child has ended or its standard input is closed, which the child's end says.
    /// @return false when it was dropped because too much waits already that the child has not read
    bool writeLine(QByteArrayView line);
    /// Closes standard input once what was written before has gone out.
    void closeStdin();

    /// Closes standard input, asks the child's process group to end and kills everything the child has started once
    /// `grace` has passed. Returns at once. Asking again can only shorten the time.
    void terminate(std::chrono::milliseconds grace);
    /// `terminate` with one second of grace, then waits for the end.
    /// @return whether the child has ended within `timeout`
    QCoro::Task<bool> terminateAndWait(std::chrono::milliseconds timeout);

    bool isRunning() const;
    /// Waits for the end. @return how it ended; nothing that is true of it when `stop` was requested before
    QCoro::Task<Exit> exited(std::stop_token stop = {});
    /// The same, blocking; not for the UI thread. @return whether it has ended within `timeout`
    bool waitForEnd(std::chrono::milliseconds timeout) const;
    /// How it ended, none while it runs.
    std::optional<Exit> exit() const;

    /// The last 4,000 characters of its standard error, without colour codes. Complete once it has ended.
    QString stderrTail() const;

private:
    std::shared_ptr<ChildIO> m_io;
    std::atomic_bool m_outputTaken = false;
    std::atomic_bool m_asked = false; ///< to end; letting go of it then takes none of its time away
};

} // namespace lmp
