#pragma once

#include "core/HTTPExchange.h"
#include "core/Result.h"
#include "core/SSEEvent.h"

#include <coroutine>
#include <memory>
#include <optional>
#include <stop_token>

namespace lmp {

/// The events of one request, pulled one at a time by one consumer:
///
///     auto stream = client.stream(path, "POST", body, stop);
///     for (;;) {
///         auto next = co_await stream.next();
///         if (!next) ...       // failed: next.error()
///         else if (!*next) ... // the stream is over
///         else ...             // **next is the event
///     }
///
/// Made by SSEClient; the request is under way from then on. Belongs to the thread it was made on, may be moved, and
/// ends the request when it is destroyed. What is not pulled stays unread, and soon unsent: memory is bounded by the
/// session's read buffer and the parser's limits, not by the length of the stream.
class SSEStream {
    class State;

public:
    /// An event, none at the end, or why there are no more. The last two are repeated when asked again.
    using Next = Result<std::optional<SSEEvent>>;

    /// Ready at once while events are buffered; otherwise the consumer resumes from the event loop.
    class [[nodiscard]] Awaiter {
    public:
        explicit Awaiter(State *state)
            : m_state(state) {}

        bool await_ready() const { return SSEStream::advance(*m_state); }
        void await_suspend(std::coroutine_handle<> handle) const { SSEStream::wait(*m_state, handle); }
        Next await_resume() const { return SSEStream::take(*m_state); }

    private:
        State *m_state;
    };

    /// The next event. One consumer waits at a time, and the stream must outlive the wait; waiting in the coroutine
    /// whose frame holds the stream is always right. A requested stop fails the next pull like a broken connection,
    /// buffered events or not.
    Awaiter next() { return Awaiter(m_state.get()); }

private:
    friend class SSEClient;
    struct Abandon {
        void operator()(State *state) const;
    };

    /// Starts the request, or is a stream that has failed already.
    SSEStream(Result<HTTPExchange::Request> request, URLSession session, std::stop_token stop);

    static bool advance(State &state);
    static void wait(State &state, std::coroutine_handle<> handle);
    static Next take(State &state);

    std::unique_ptr<State, Abandon> m_state;
};

} // namespace lmp
