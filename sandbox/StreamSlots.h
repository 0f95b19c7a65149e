// The seats for streamed replies: a bounded number, so that streams can never take every thread. Owned by
// SandboxServices; any thread.
#pragma once
#include <atomic>
#include <memory>

namespace lmp::sandbox {

class StreamSlots {
public:
    explicit StreamSlots(int cap)
        : m_cap(cap) {}

    /// A seat that is free again when the pointer goes; null when all are taken. Must not outlive this object.
    std::shared_ptr<void> take() {
        if (m_taken.fetch_add(1) >= m_cap) {
            m_taken.fetch_sub(1);
            return nullptr;
        }
        return {this, [](StreamSlots *slots) {
                    slots->m_taken.fetch_sub(1);
                }};
    }

    int taken() const { return m_taken.load(); }

private:
    const int m_cap;
    std::atomic<int> m_taken = 0;
};

} // namespace lmp::sandbox
