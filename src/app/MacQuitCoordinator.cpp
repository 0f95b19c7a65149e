#include "app/MacQuitCoordinator.h"

#include "core/Detach.h"
#include "platform/Log.h"

#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;

MacQuitCoordinator::MacQuitCoordinator(Save save, Clock &clock, QObject *parent)
    : QObject(parent)
    , m_save(std::move(save))
    , m_clock(clock) {}

MacQuitCoordinator::~MacQuitCoordinator() {
    m_deadline.request_stop();
}

QString MacQuitCoordinator::warningMessage() {
    return u"未执行输入尚未保存"_s;
}

QString MacQuitCoordinator::warningText() {
    return u"本地输入暂未保存，应用仍保持打开。请重试保存后再退出。"_s;
}

QString MacQuitCoordinator::retryText() {
    return u"重试保存并退出"_s;
}

QString MacQuitCoordinator::returnText() {
    return u"返回应用"_s;
}

void MacQuitCoordinator::requestTermination() {
    if (m_state == State::Warning)
        Q_EMIT raiseRequested();
    if (m_started)
        return;
    m_started = true;
    begin();
}

void MacQuitCoordinator::begin() {
    ++m_operation;
    m_deadline = std::stop_source();
    const QPointer self(this);
    setState(State::Saving);
    if (!self)
        return;
    detach(runDeadline(), "the deadline of a quit");
    detach(runOperation(), "the save of a quit");
}

QCoro::Task<> MacQuitCoordinator::runOperation() {
    const QPointer self(this);
    const auto operation = m_operation;
    bool saved = false;
    try {
        saved = co_await m_save();
    } catch (const std::exception &error) {
        qCCritical(logTermination) << "saving local input ended with an exception:" << error.what();
    }
    if (self && m_operation == operation && m_state == State::Saving)
        onSaved(saved);
}

QCoro::Task<> MacQuitCoordinator::runDeadline() {
    const QPointer self(this);
    const auto operation = m_operation;
    const bool passed = co_await m_clock.sleep(limit, m_deadline.get_token());
    if (!self || !passed || m_operation != operation || m_state != State::Saving)
        co_return;
    qCWarning(logTermination)
        << "Local shutdown deadline reached; process exit and remote cancellation are unconfirmed.";
    m_late = true;
    allow();
}

void MacQuitCoordinator::onSaved(bool saved) {
    m_deadline.request_stop();
    if (saved) {
        allow();
        return;
    }
    qCWarning(logTermination) << "Local input could not be preserved; application termination cancelled.";
    const QPointer self(this);
    setState(State::Warning);
    if (self)
        Q_EMIT raiseRequested();
}

void MacQuitCoordinator::allow() {
    m_resolved = true;
    // Whoever asked is told later, even when the save took no time at all.
    QMetaObject::invokeMethod(this, &MacQuitCoordinator::terminationAllowed, Qt::QueuedConnection);
    setState(State::Resolved);
}

void MacQuitCoordinator::saveMeanwhile() {
    if (m_state != State::Saving && !m_resolved)
        detach(runMeanwhile(), "a save that ends nothing");
}

QCoro::Task<> MacQuitCoordinator::runMeanwhile() {
    co_await m_save();
}

void MacQuitCoordinator::retryAndQuit() {
    if (m_state == State::Warning)
        begin();
}

void MacQuitCoordinator::returnToApplication() {
    if (m_state != State::Warning)
        return;
    m_started = false;
    QMetaObject::invokeMethod(this, &MacQuitCoordinator::terminationRefused, Qt::QueuedConnection);
    setState(State::Idle);
}

void MacQuitCoordinator::setState(State state) {
    if (std::exchange(m_state, state) != state)
        Q_EMIT stateChanged();
}

} // namespace lmp
