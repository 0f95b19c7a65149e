#pragma once

#include "core/Channel.h"

#include <QByteArray>

namespace lmp {

/// The standard output of a child, line by line, for one consumer:
///
///     auto lines = process->lines();
///     while (const auto line = co_await lines.next())
///         ... *line, a QByteArrayView without its line feed, valid until the next next()
///     if (lines.isTooLong()) ... // the child sent a line without end; stop it
///
/// Lines cross the threads in batches, one block of memory for some hundred lines, and are views into it: an allocation
/// for each line would halve the throughput. Ready at once while the batch lasts; otherwise the coroutine goes on
/// through its event loop. A consumer that is slow or stops pulling holds the child back, it never fills the memory.
/// Belongs to one thread; may be moved. Cancels the channel when it goes, so that a child whose output nobody wants any
/// more is read and dropped instead of being held for ever.
class DevLines {
public:
    /// Whole lines, each with its line feed; or the notice, as the last item, that a line was too long.
    struct Batch {
        QByteArray bytes = {};
        bool tooLong = false;
    };

    explicit DevLines(Channel<Batch> channel)
        : m_channel(std::in_place, std::move(channel)) {}
    ~DevLines() {
        if (m_channel)
            m_channel->cancel();
    }
    DevLines(DevLines &&other) noexcept
        : m_channel(std::exchange(other.m_channel, std::nullopt))
        , m_batch(std::move(other.m_batch))
        , m_at(std::exchange(other.m_at, 0))
        , m_tooLong(other.m_tooLong) {}
    DevLines &operator=(DevLines &&) = delete;

    class [[nodiscard]] Next {
    public:
        Next(DevLines &lines, std::stop_token stop)
            : m_lines(lines)
            , m_batch(lines.m_channel->next(stop))
            , m_stop(std::move(stop)) {}
        bool await_ready() {
            m_inBatch = m_lines.hasLine() && !m_stop.stop_requested();
            return m_inBatch || m_batch.await_ready();
        }
        bool await_suspend(std::coroutine_handle<> handle) { return m_batch.await_suspend(handle); }
        std::optional<QByteArrayView> await_resume() {
            return m_inBatch ? m_lines.takeLine() : m_lines.takeBatch(m_batch.await_resume());
        }

    private:
        DevLines &m_lines;
        Channel<Batch>::Next m_batch;
        std::stop_token m_stop;
        bool m_inBatch = false;
    };

    /// @return the next line; none at the end of the output, or when `stop` was requested
    Next next(std::stop_token stop = {}) { return Next(*this, std::move(stop)); }

    /// Why there are no more: the child sent a line of more than 64 MB, and nothing after it is read.
    bool isTooLong() const { return m_tooLong; }

    /// The next line if one is there already; never waits.
    std::optional<QByteArrayView> tryNext() { return hasLine() ? takeLine() : takeBatch(m_channel->tryNext()); }

private:
    bool hasLine() const { return m_at < m_batch.size(); }
    std::optional<QByteArrayView> takeLine() {
        const auto rest = QByteArrayView(m_batch).sliced(m_at);
        const auto line = rest.first(rest.indexOf('\n'));
        m_at += line.size() + 1;
        return line;
    }
    std::optional<QByteArrayView> takeBatch(std::optional<Batch> batch) {
        if (!batch)
            return std::nullopt;
        m_tooLong = batch->tooLong;
        m_batch = std::move(batch->bytes);
        m_at = 0;
        return hasLine() ? takeLine() : std::nullopt;
    }

    std::optional<Channel<Batch>> m_channel;
    QByteArray m_batch;
    qsizetype m_at = 0;
    bool m_tooLong = false;
};

} // namespace lmp
