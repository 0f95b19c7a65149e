#pragma once

#include "dev/DevProcess.h"

#include <QHash>

#include <mutex>

namespace lmp {

struct ChildSpawn;

/// The children that live, and the refusal of new ones once the program quits.
///
/// One for the process (`shared`); tests make their own. Any thread. One lock covers the look at the quitting flag and
/// the entering of a new child, so no child can start after the quit has looked who is there.
class DevProcessRegistry {
public:
    static constexpr std::chrono::milliseconds quitGrace{1000};
    static constexpr std::chrono::milliseconds quitLimit{2500};

    static DevProcessRegistry &shared();

    /// Refuses new children from now on, asks every child to end, kills it after a second, and waits until all have
    /// ended or 2.5 seconds have passed; what is left then is ended by its guardian without us. Blocks; for the end of
    /// a program without an event loop.
    void quitAndWait();
    /// The same without blocking the calling thread. The registry must outlive it.
    QCoro::Task<> quit();

    bool isQuitting() const;
    qsizetype liveCount() const;

private:
    friend class DevProcess;
    using Start = std::function<std::expected<std::shared_ptr<ChildIO>, DevProcess::Failure>()>;

    /// Runs `start` unless the program quits, and enters what it started.
    std::expected<std::shared_ptr<ChildIO>, DevProcess::Failure> enter(const Start &start);

    /// Shared with the children, which leave it as they end.
    struct State {
        std::mutex lock;
        bool quitting = false;
        QHash<QUuid, std::shared_ptr<ChildIO>> children;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace lmp
