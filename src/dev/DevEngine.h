#pragma once

#include "core/Channel.h"
#include "dev/DevEngineFailure.h"
#include "dev/DevEngineKind.h"
#include "dev/DevEvent.h"
#include "dev/DevExecutor.h"
#include "dev/DevMode.h"
#include "dev/DevPermissionDecision.h"

#include <QUrl>

#include <expected>

namespace lmp {

/// One session of a coding agent: the user's words go in, events come out.
///
/// Made with `make` by whoever starts or resumes a session, on that one's thread, and used from there; `shutdown` alone
/// may be called from anywhere. `start` comes once and first, then any number of `send`, `respond`, `setMode` and
/// `interrupt`, then `stop`, which finishes the stream; a new session needs a new engine. What goes wrong in a turn is
/// a `Failed` on the stream. Letting the handle go stops the session and waits for the executor, not for the child.
///
/// Every operation is carried out on the engine's own executor, one after the other in the order of the calls, and
/// engines keep all they have there: the `on...` functions run on it and nowhere else. An operation under way when the
/// session is stopped must end soon, with a failure; the coroutines of an engine are started with `m_executor.spawn`.
class DevEngine {
public:
    template <class T>
    using Outcome = std::expected<T, DevEngineFailure>;
    /// Done, where there is nothing else to tell.
    struct Done {};
    /// Words that the agent has taken.
    struct Sent {
        bool joined = false; ///< the turn that ran, whose end is theirs too; otherwise they began one
    };
    static constexpr std::size_t maxWithdrawn = 256;
    struct Session {
        Channel<DevEvent> events; ///< for one consumer on the caller's thread; closed at the end
        /// The ids of questions that nobody has to answer any more: the agent took them back, or their turn is over.
        /// Beside the events, so the word may come before its question has been taken from there. May be left unread.
        Channel<QString> withdrawn = Channel<QString>(maxWithdrawn);
    };
    struct Start {
        QUrl cwd = {};                      ///< the repository; a file URL
        std::optional<QString> resume = {}; ///< the engineSessionId of an earlier session
        DevMode mode = DevMode::acceptEdits;
        std::optional<QString> model = {};
    };
    struct Release {
        void operator()(DevEngine *engine) const;
    };
    using Handle = std::unique_ptr<DevEngine, Release>;

    /// The one way to make an engine of class `E`, since one must be stopped before any of it is destroyed.
    template <class E, class... Args>
    static Handle make(Args &&...args) {
        return Handle(new E(std::forward<Args>(args)...));
    }
    DevEngine(const DevEngine &) = delete;
    DevEngine &operator=(const DevEngine &) = delete;

    virtual DevEngineKind kind() const = 0;

    /// Starts the agent. The stream begins with `SessionStarted` as soon as the engine knows its session, which may be
    /// only after the first `send`.
    QCoro::Task<Outcome<Session>> start(Start request);
    /// Begins a turn, queues one where the engine can, or joins the one that runs where the engine works so.
    QCoro::Task<Outcome<Sent>> send(QString text);
    /// Answers a permission request; one that does not wait any more is left alone.
    /// @return whether it waited
    QCoro::Task<bool> respond(QString requestId, DevPermissionDecision decision);
    /// Later calls of tools are judged by `mode`.
    QCoro::Task<Done> setMode(DevMode mode);
    /// Asks the running turn to stop; the stream then has `Interrupted`. Between turns nothing is
    /// stopped, and not every engine says anything.
    QCoro::Task<Done> interrupt();
    /// Ends the session and its child, which is given 3 s to leave by itself.
    QCoro::Task<Done> stop();
    /// The same from any thread, without waiting.
    void shutdown();

protected:
    explicit DevEngine(const QString &name)
        : m_executor(name) {}
    virtual ~DevEngine();

    virtual QCoro::Task<Outcome<Session>> onStart(Start request) = 0;
    virtual QCoro::Task<Outcome<Sent>> onSend(QString text) = 0;
    virtual bool onRespond(const QString &requestId, const DevPermissionDecision &decision) = 0;
    virtual void onSetMode(DevMode mode) = 0;
    virtual void onInterrupt() = 0;
    /// May be called more than once, and before `onStart`.
    virtual void onStop() = 0;

    DevExecutor m_executor;
};

} // namespace lmp
