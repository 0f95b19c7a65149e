#pragma once

#include "dev/DevProcess.h"

#include <mutex>
#include <unordered_map>

namespace lmp {

/// The children that live, and the refusal of new ones once the program quits.
///
/// One for the process (`shared`); tests make their own. Any thread. One lock covers the looking at the quitting flag
/// and the entering of a new child, so no child can start after the quit has looked who is there.
class DevProcessRegistry {
public:
    static constexpr std::chrono::milliseconds quitGrace{1000};
    static constexpr std::chrono::milliseconds quitLimit{2500};

    static DevProcessRegistry &shared();

    /// Refuses new children from now on, asks every child to end, kills it after a second, and waits until all have
    /// ended or 2.5 seconds have passed. Blocks; for the end of a program without an event loop.
    void quitAndWait();
    /// The same without blocking the calling thread. The registry must outlive it.
    QCoro::Task<> quit();

    bool isQuitting() const;
    qsizetype liveCount() const;

private:
    friend class DevProcess;

    mutable std::mutex m_lock;
    bool m_quitting = false;
    std::unordered_map<QUuid, std::weak_ptr<ChildIO>> m_children;
};

} // namespace lmp
