#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <utility>

namespace lmp::detail {

/// Items in order, and how much of a capacity they take. Owned and guarded by a ChannelState.
template <class T>
class WeighedQueue {
public:
    explicit WeighedQueue(std::size_t capacity)
        : m_capacity(capacity) {}

    bool isEmpty() const { return m_items.empty(); }
    bool isHalfFree() const { return m_load <= m_capacity / 2; }
    /// An empty queue takes anything, and any queue takes what weighs nothing.
    bool fits(std::size_t weight) const { return weight == 0 || isEmpty() || m_load + weight <= m_capacity; }

    /// Whether or not it fits.
    void push(T item, std::size_t weight) {
        m_items.push_back({std::move(item), weight});
        m_load += weight;
    }
    /// @return none when it is empty
    std::optional<T> take() {
        if (m_items.empty())
            return std::nullopt;
        std::optional<T> item(std::move(m_items.front().value));
        m_load -= m_items.front().weight;
        m_items.pop_front();
        return item;
    }
    /// Leaves it empty.
    /// @return what was in it
    WeighedQueue takeAll() {
        WeighedQueue all(m_capacity);
        std::swap(all.m_items, m_items);
        std::swap(all.m_load, m_load);
        return all;
    }

private:
    struct Item {
        T value;
        std::size_t weight;
    };

    std::size_t m_capacity;
    std::deque<Item> m_items;
    std::size_t m_load = 0;
};

} // namespace lmp::detail
