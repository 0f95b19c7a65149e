#include "dev/DevAuthFlow.h"

#include "core/Detach.h"
#include "core/JsonEncodingError.h"

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto endGrace = 1s;

/// @return none when a request cannot be written down
std::optional<QByteArrayList> openingOf(DevSignIn &signIn) {
    try {
        return signIn.opening();
    } catch (const JsonEncodingError &) {
        return std::nullopt;
    }
}

} // namespace

DevAuthFlow::DevAuthFlow(Clock &clock, Probe probe, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_probe(std::move(probe)) {}

DevAuthFlow::~DevAuthFlow() {
    for (auto &[kind, flow] : m_flows)
        endProcess(flow);
}

DevAuthFlow::Phase DevAuthFlow::phase(DevEngineKind kind) const {
    const auto flow = m_flows.find(kind);
    return flow == m_flows.end() ? Phase() : flow->second.phase;
}

void DevAuthFlow::start(DevEngineKind kind) {
    const auto now = phase(kind).kind;
    if (now == Phase::Kind::starting || now == Phase::Kind::waiting || kind == DevEngineKind::relay)
        return;
    ++m_flows[kind].generation;
    const QPointer self(this);
    setPhase(kind, {.kind = Phase::Kind::starting});
    if (self && phase(kind).kind == Phase::Kind::starting)
        detach(run(kind), "a tool's sign-in");
}

void DevAuthFlow::cancel(DevEngineKind kind) {
    Flow &flow = m_flows[kind];
    ++flow.generation;
    endProcess(flow);
    setPhase(kind, {});
}

QCoro::Task<> DevAuthFlow::run(DevEngineKind kind) {
    const QPointer self(this);
    const auto generation = m_flows[kind].generation;
    const auto isStale = [self, kind, generation] {
        return !self || self->m_flows[kind].generation != generation;
    };

    const auto signIn = DevSignIn::of(kind);
    const auto opening = openingOf(*signIn);
    if (!opening)
        co_return finish(kind, {.kind = Phase::Kind::failed, .message = u"请求组装失败"_s});
    const auto command = signIn->command();
    const auto launched = (co_await DevProcess::start(command)).process;
    if (isStale())
        co_return;
    if (!launched)
        co_return finish(kind, {.kind = Phase::Kind::failed, .message = launched.error().description()});
    const auto process = *launched;
    m_flows[kind].process = process;
    m_flows[kind].deadline = std::stop_source();
    detach(expire(kind, signIn->limit(), signIn->lateText()), "the deadline of a tool's sign-in");
    for (const auto &line : *opening)
        process->writeLine(line);
    auto lines = process->lines();
    for (;;) {
        const auto line = co_await lines.next();
        if (isStale())
            co_return;
        if (!line)
            co_return finish(kind, {.kind = Phase::Kind::failed, .message = signIn->deadText()});
        if (take(kind, signIn->read(*line)) || isStale())
            co_return;
    }
}

/// @return whether the flow is over; it may also have been cancelled by whoever learns of the step
bool DevAuthFlow::take(DevEngineKind kind, DevSignIn::Step step) {
    for (const auto &line : step.write)
        m_flows[kind].process->writeLine(line);
    if (step.done || step.failure) {
        const auto end = step.done ? Phase::Kind::done : Phase::Kind::failed;
        finish(kind, {.kind = end, .message = step.failure.value_or(QString())});
        return true;
    }
    const QPointer self(this);
    if (step.url)
        setPhase(kind, {.kind = Phase::Kind::waiting, .url = *step.url});
    return !self;
}

QCoro::Task<> DevAuthFlow::expire(DevEngineKind kind, std::chrono::seconds limit, QString lateText) {
    const QPointer self(this);
    const auto generation = m_flows[kind].generation;
    const bool passed = co_await m_clock.sleep(limit, m_flows[kind].deadline.get_token());
    if (self && passed && m_flows[kind].generation == generation)
        finish(kind, {.kind = Phase::Kind::failed, .message = lateText});
}

void DevAuthFlow::finish(DevEngineKind kind, Phase phase) {
    Flow &flow = m_flows[kind];
    ++flow.generation;
    endProcess(flow);
    const QPointer self(this);
    setPhase(kind, std::move(phase));
    if (self)
        m_probe(kind);
}

void DevAuthFlow::endProcess(Flow &flow) {
    flow.deadline.request_stop();
    if (const auto process = std::exchange(flow.process, nullptr))
        process->terminate(endGrace);
}

void DevAuthFlow::setPhase(DevEngineKind kind, Phase phase) {
    if (phase == m_flows[kind].phase)
        return;
    m_flows[kind].phase = std::move(phase);
    Q_EMIT changed(kind);
}

} // namespace lmp
