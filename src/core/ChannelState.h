#pragma once

#include "core/ChannelSide.h"
#include "core/Pushed.h"
#include "core/WeighedQueue.h"

#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>

namespace lmp::detail {

/// What the copies of a Channel share. Any thread; see Channel for the contract.
template <class T>
class ChannelState : public std::enable_shared_from_this<ChannelState<T>> {
public:
    explicit ChannelState(std::size_t capacity)
        : m_items(capacity) {}

    Pushed tryPush(T &item, std::size_t weight) {
        const std::scoped_lock guard(m_lock);
        if (m_over)
            return Pushed::Over;
        if (!m_items.fits(weight)) {
            refuse(weight);
            return Pushed::Full;
        }
        m_items.push(std::move(item), weight);
        wakeConsumer();
        return Pushed::Taken;
    }

    void setWhenRoom(std::function<void()> call) {
        const std::scoped_lock guard(m_lock);
        m_whenRoom = std::move(call);
    }

    /// @return false when there is room already
    bool waitForRoom(std::coroutine_handle<> handle, std::size_t weight) {
        const std::scoped_lock guard(m_lock);
        if (m_over || m_items.fits(weight))
            return false;
        refuse(weight);
        m_producer.wait(handle);
        return true;
    }
    void forgetProducer() {
        const std::scoped_lock guard(m_lock);
        m_producer.take();
    }

    bool isReady() const {
        const std::scoped_lock guard(m_lock);
        return m_over || !m_items.isEmpty();
    }
    /// @return false when there is something to take already
    bool waitForItem(std::coroutine_handle<> handle) {
        const std::scoped_lock guard(m_lock);
        if (m_over || !m_items.isEmpty())
            return false;
        m_stopped = false;
        m_consumer.wait(handle);
        return true;
    }
    void stopWaiting() {
        const std::scoped_lock guard(m_lock);
        m_stopped = true;
        wakeConsumer();
    }
    void forgetConsumer() {
        const std::scoped_lock guard(m_lock);
        m_consumer.take();
    }

    std::optional<T> take() {
        std::unique_lock guard(m_lock);
        auto item = m_items.take();
        // Not at the first free place: the two threads would then wake each other for every single item.
        if (item && m_refused && m_items.isHalfFree() && m_items.fits(m_wanted))
            tellProducer(guard);
        return item;
    }

    void end(bool drop) {
        std::optional<WeighedQueue<T>> dropped; // goes without the lock
        std::unique_lock guard(m_lock);
        if (drop)
            dropped = m_items.takeAll();
        if (std::exchange(m_over, true))
            return;
        wakeConsumer();
        tellProducer(guard);
    }

    bool isOver() const {
        const std::scoped_lock guard(m_lock);
        return m_over;
    }

private:
    void refuse(std::size_t weight) {
        m_refused = true;
        // Whoever waits knows what it waits for; a push beside it does not change that.
        if (!m_producer.isWaiting())
            m_wanted = weight;
    }

    void wakeConsumer() {
        m_consumer.post([state = this->shared_from_this()] { state->resumeConsumer(); });
    }
    /// A wake may have been meant for a wait that is over, so each looks again whether there is a reason.
    void resumeConsumer() {
        std::unique_lock guard(m_lock);
        if (!m_over && !m_stopped && m_items.isEmpty())
            return m_consumer.keepWaiting();
        m_consumer.resume(guard);
    }
    void tellProducer(std::unique_lock<std::mutex> &guard) {
        m_refused = false;
        m_producer.post([state = this->shared_from_this()] { state->resumeProducer(); });
        const auto call = m_whenRoom;
        guard.unlock();
        if (call)
            call();
    }
    void resumeProducer() {
        std::unique_lock guard(m_lock);
        // What was pushed beside it since may have taken the room again; it will not ask a second time.
        if (!m_over && !m_items.fits(m_wanted)) {
            m_refused = true;
            return m_producer.keepWaiting();
        }
        m_producer.resume(guard);
    }

    mutable std::mutex m_lock;
    WeighedQueue<T> m_items;
    bool m_over = false;
    bool m_refused = false;   ///< a push was turned away and nobody has been told of room since
    std::size_t m_wanted = 0; ///< what that push weighed
    bool m_stopped = false;   ///< the wait that is going on is to end without an item
    std::function<void()> m_whenRoom;
    ChannelSide m_consumer;
    ChannelSide m_producer;
};

} // namespace lmp::detail
