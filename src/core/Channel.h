#pragma once

#include "core/ChannelState.h"

namespace lmp {

/// A bounded queue from one producer to one consumer, each on a thread of its own:
///
///     co_await channel.push(event);                    // or tryPush, where nobody may wait
///     while (auto event = co_await channel.next()) ... // none: closed by the producer, or cancelled
///
/// A value; copies are the same channel, so either side may go first. A producer that goes must `close()`, a consumer
/// that goes must `cancel()`: nobody else tells the other side. A full channel holds the producer back. A coroutine
/// that waits goes on through the event loop of its thread, never inside the call that brought the news; its frame may
/// be destroyed while it waits. Nothing fails.
template <class T>
class Channel {
    using State = detail::ChannelState<T>;

public:
    using Pushed = detail::Pushed;

    /// @param capacity how much may wait, in items or in whatever `weight` counts; an empty channel takes anything,
    ///                 and what weighs nothing always has room
    explicit Channel(std::size_t capacity = 64)
        : m_state(std::make_shared<State>(capacity)) {}

    // The producer's end.

    /// Takes `item` away if there is room.
    /// @return whether it was taken; after Full, the call set by `whenRoom` comes once there is room
    Pushed tryPush(T &item, std::size_t weight = 1) const { return m_state->tryPush(item, weight); }

    /// Set before the first push: called after a Full, once half of the capacity is free again and what was refused has
    /// room, or the channel is over. It runs on the consumer's thread, must be short and must not throw.
    void whenRoom(std::function<void()> call) const { m_state->setWhenRoom(std::move(call)); }

    /// `co_await push(item)`: waits for room.
    /// @return false once the channel is over; the item is dropped then
    class [[nodiscard]] Push {
    public:
        Push(std::shared_ptr<State> state, T item, std::size_t weight)
            : m_state(std::move(state))
            , m_item(std::move(item))
            , m_weight(weight) {}
        ~Push() {
            if (m_waits)
                m_state->forgetProducer();
        }
        Push(const Push &) = delete;
        Push &operator=(const Push &) = delete;

        bool await_ready() {
            m_pushed = m_state->tryPush(m_item, m_weight);
            return m_pushed != Pushed::Full;
        }
        bool await_suspend(std::coroutine_handle<> handle) { return m_waits = m_state->waitForRoom(handle, m_weight); }
        bool await_resume() {
            m_waits = false;
            if (m_pushed == Pushed::Full)
                m_pushed = m_state->tryPush(m_item, m_weight);
            return m_pushed == Pushed::Taken;
        }

    private:
        std::shared_ptr<State> m_state;
        T m_item;
        std::size_t m_weight;
        Pushed m_pushed = Pushed::Full;
        bool m_waits = false;
    };
    Push push(T item, std::size_t weight = 1) const { return Push(m_state, std::move(item), weight); }

    /// Nothing more comes; what is queued is still delivered.
    void close() const { m_state->end(false); }

    // The consumer's end.

    /// `co_await next()`: the next item, or none when the channel is over or `stop` was requested, which leaves the
    /// channel as it is.
    class [[nodiscard]] Next {
    public:
        Next(std::shared_ptr<State> state, std::stop_token stop)
            : m_state(std::move(state))
            , m_stop(std::move(stop)) {}
        ~Next() {
            m_onStop.reset();
            if (m_waits)
                m_state->forgetConsumer();
        }
        Next(const Next &) = delete;
        Next &operator=(const Next &) = delete;

        bool await_ready() const { return m_stop.stop_requested() || m_state->isReady(); }
        bool await_suspend(std::coroutine_handle<> handle) {
            m_waits = m_state->waitForItem(handle);
            if (m_waits)
                m_onStop.emplace(m_stop, OnStop{m_state.get()});
            return m_waits;
        }
        std::optional<T> await_resume() {
            m_onStop.reset();
            m_waits = false;
            return m_stop.stop_requested() ? std::nullopt : m_state->take();
        }

    private:
        struct OnStop {
            State *state;
            void operator()() const { state->stopWaiting(); }
        };

        std::shared_ptr<State> m_state;
        std::stop_token m_stop;
        std::optional<std::stop_callback<OnStop>> m_onStop;
        bool m_waits = false;
    };
    Next next(std::stop_token stop = {}) const { return Next(m_state, std::move(stop)); }

    /// The next item if one is there; never waits.
    std::optional<T> tryNext() const { return m_state->take(); }

    /// Nobody wants any more: what is queued is dropped and the producer turned away.
    void cancel() const { m_state->end(true); }

    // Either end.

    /// The producer has closed it or the consumer has cancelled it.
    bool isOver() const { return m_state->isOver(); }

private:
    std::shared_ptr<State> m_state;
};

} // namespace lmp
