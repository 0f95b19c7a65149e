#include "dev/DevEngineRegistry.h"

#include <QPointer>

#include <utility>

namespace lmp {

using namespace Qt::StringLiterals;

DevEngineRegistry::DevEngineRegistry(Clock &clock, Probes probes, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_probes(std::move(probes)) {
    for (const auto &[kind, probe] : m_probes)
        m_readiness[kind] = Readiness::unknown(u"还没有探测"_s);
}

DevEngineRegistry::Probes DevEngineRegistry::localProbes() {
    return {{DevEngineKind::claude,
             [] {
                 return DevProbe::run(DevProbe::claude());
             }},
            {DevEngineKind::codex, [] {
                 return DevProbe::run(DevProbe::codex());
             }}};
}

DevReadiness DevEngineRegistry::relay(bool signedIn) {
    if (signedIn)
        return {.state = Readiness::State::ready, .detail = u"模型走 Lumenpair 中继，按用量扣 Pip"_s};
    return {.state = Readiness::State::loggedOut, .detail = u"登录 Lumenpair 后可用（按用量扣 Pip）。"_s};
}

DevReadiness DevEngineRegistry::readiness(DevEngineKind kind) const {
    const auto found = m_readiness.find(kind);
    return found == m_readiness.end() ? Readiness() : found->second;
}

QCoro::Task<> DevEngineRegistry::probe() {
    const QPointer self(this);
    const auto generation = ++m_generation;
    std::vector<QCoro::Task<>> running;
    for (const auto &[kind, probe] : m_probes)
        m_readiness[kind] = {.state = Readiness::State::probing};
    Q_EMIT changed();
    if (!self || m_generation != generation)
        co_return;
    const auto probes = m_probes;
    for (const auto &[kind, probe] : probes) {
        // One that answers at once may have told somebody who deletes this, or asks again.
        if (!self || m_generation != generation)
            break;
        running.push_back(probeOne(kind));
    }
    for (auto &one : running)
        co_await one;
    if (!self || m_generation != generation)
        co_return;
    m_probedAt = m_clock.now();
    Q_EMIT changed();
}

QCoro::Task<> DevEngineRegistry::probeOne(DevEngineKind kind) {
    const QPointer self(this);
    const auto generation = m_generation;
    auto readiness = co_await m_probes.at(kind)();
    if (!self || m_generation != generation)
        co_return;
    m_readiness[kind] = std::move(readiness);
    Q_EMIT changed();
}

} // namespace lmp
