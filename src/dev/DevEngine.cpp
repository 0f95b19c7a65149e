#include "dev/DevEngine.h"

namespace lmp {

namespace {

/// What a function does, as a task with a value.
template <class F>
QCoro::Task<DevEngine::Done> done(F call) {
    call();
    co_return DevEngine::Done();
}

QCoro::Task<bool> told(bool answer) {
    co_return answer;
}

} // namespace

DevEngine::~DevEngine() = default;

void DevEngine::Release::operator()(DevEngine *engine) const {
    engine->m_executor.finish([engine] { engine->onStop(); });
    delete engine;
}

QCoro::Task<DevEngine::Outcome<DevEngine::Session>> DevEngine::start(Start request) {
    co_return co_await m_executor.run([this, request = std::move(request)] { return onStart(request); });
}

QCoro::Task<DevEngine::Outcome<DevEngine::Sent>> DevEngine::send(QString text) {
    co_return co_await m_executor.run([this, text = std::move(text)] { return onSend(text); });
}

QCoro::Task<bool> DevEngine::respond(QString requestId, DevPermissionDecision decision) {
    co_return co_await m_executor.run(
        [this, id = std::move(requestId), decision = std::move(decision)] { return told(onRespond(id, decision)); });
}

QCoro::Task<DevEngine::Done> DevEngine::setMode(DevMode mode) {
    co_return co_await m_executor.run([this, mode] { return done([this, mode] { onSetMode(mode); }); });
}

QCoro::Task<DevEngine::Done> DevEngine::interrupt() {
    co_return co_await m_executor.run([this] { return done([this] { onInterrupt(); }); });
}

QCoro::Task<DevEngine::Done> DevEngine::stop() {
    co_return co_await m_executor.run([this] { return done([this] { onStop(); }); });
}

void DevEngine::shutdown() {
    m_executor.post([this] { onStop(); });
}

} // namespace lmp
