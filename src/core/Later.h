#pragma once

#include <QObject>

#include <coroutine>
#include <memory>
#include <optional>
#include <utility>

namespace lmp {

/// A value that arrives once and later, for one coroutine to wait on: what joins a signal or a callback to a task.
///
/// One thread. Copies share the one value. The coroutine resumes through the event loop, never inside `resolve`; when
/// the value never comes it never resumes, so whoever resolves must outlive the wait or resolve in its destructor.
template <class T>
class Later {
public:
    Later()
        : m_state(new State, [](State *state) { state->deleteLater(); }) {}

    /// Gives the value. The first one counts.
    void resolve(T value) const {
        if (m_state->value)
            return;
        m_state->value = std::move(value);
        if (m_state->waiting)
            wake(m_state.get());
    }
    bool isResolved() const { return m_state->value.has_value(); }

    bool await_ready() const { return isResolved(); }
    void await_suspend(std::coroutine_handle<> handle) const { m_state->waiting = handle; }
    T await_resume() const { return *m_state->value; }

private:
    struct State : QObject {
        std::optional<T> value;
        std::coroutine_handle<> waiting;
    };
    static void wake(State *state) {
        QMetaObject::invokeMethod(state, [state] { std::exchange(state->waiting, {}).resume(); }, Qt::QueuedConnection);
    }

    std::shared_ptr<State> m_state;
};

} // namespace lmp
