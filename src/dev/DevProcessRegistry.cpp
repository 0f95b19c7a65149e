#include "dev/DevProcessRegistry.h"

#include "core/PoolAwaiter.h"
#include "dev/ChildIO.h"
#include "dev/DevPool.h"

namespace lmp {

using namespace Qt::StringLiterals;

DevProcessRegistry &DevProcessRegistry::shared() {
    // Never destroyed: the thread of the children may still report an end while the process leaves.
    static auto *const registry = new DevProcessRegistry;
    return *registry;
}

std::expected<std::shared_ptr<ChildIO>, DevProcess::Failure> DevProcessRegistry::enter(const Start &start) {
    const std::scoped_lock guard(m_state->lock);
    if (m_state->quitting)
        return std::unexpected(DevProcess::Failure::launch(u"应用正在退出，未启动新的本地进程"_s));
    auto child = start();
    if (!child)
        return child;
    const QUuid id = (*child)->ownershipID();
    (*child)->whenEnded([state = m_state, id] {
        const std::scoped_lock leaving(state->lock);
        state->children.remove(id);
    });
    m_state->children.insert(id, *child);
    return child;
}

void DevProcessRegistry::quitAndWait() {
    std::vector<std::shared_ptr<ChildIO>> children;
    {
        const std::scoped_lock guard(m_state->lock);
        m_state->quitting = true;
        for (const auto &child : std::as_const(m_state->children))
            children.push_back(child);
    }
    for (const auto &child : children)
        child->terminate(quitGrace);
    const auto deadline = std::chrono::steady_clock::now() + quitLimit;
    for (const auto &child : children) {
        if (!child->waitForEnd(deadline))
            child->abandon();
    }
}

QCoro::Task<> DevProcessRegistry::quit() {
    co_await PoolAwaiter(
        [this] {
            quitAndWait();
            return true;
        },
        &DevPool::ending());
}

bool DevProcessRegistry::isQuitting() const {
    const std::scoped_lock guard(m_state->lock);
    return m_state->quitting;
}

qsizetype DevProcessRegistry::liveCount() const {
    const std::scoped_lock guard(m_state->lock);
    return m_state->children.size();
}

} // namespace lmp
