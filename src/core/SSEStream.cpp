#include "core/SSEStream.h"

#include "core/SSEParser.h"

#include <QTimer>

#include <limits>
#include <utility>

namespace lmp {

using namespace std::chrono_literals;

namespace {

/// An error body beyond this is dropped; one that is not whole after this time is taken as far as it came.
constexpr qsizetype maxErrorBody = 1024 * 1024;
constexpr auto errorBodyTime = 10s;

/// Bytes parsed at a time, so that few parsed events ever wait and their memory stays warm.
constexpr qsizetype sliceSize = 16 * 1024;

} // namespace

/// What outlives the handle until the event loop has let go of it.
class SSEStream::State : public QObject {
public:
    State(Result<HTTPExchange::Request> request, URLSession session, std::stop_token stop);

    /// @return whether take() has something to say
    bool advance();
    void wait(std::coroutine_handle<> handle);
    Next take();
    void abandon();

private:
    /// Ends the request on its own thread, wherever the stop is requested.
    struct OnStop {
        State *state;
        void operator()() const { QMetaObject::invokeMethod(state, &State::wake, Qt::QueuedConnection); }
    };

    bool isRefusal() const { return *m_exchange->status() < 200 || *m_exchange->status() > 299; }
    bool readMore();
    void readErrorBody();
    void conclude();
    void fail(APIError error);
    void onResponse();
    void wake();
    void forgetEvents() {
        m_events.clear();
        m_at = 0;
    }

    std::unique_ptr<HTTPExchange> m_exchange;
    SSEParser m_parser;
    std::vector<SSEEvent> m_events; ///< parsed; those before m_at have been pulled
    size_t m_at = 0;
    QByteArray m_chunk; ///< read; the bytes before m_parsed have been parsed
    qsizetype m_parsed = 0;
    QByteArray m_errorBody;
    bool m_over = false;
    std::optional<APIError> m_error; ///< why it is over, when not by its end
    std::coroutine_handle<> m_waiting;
    std::stop_token m_stop;
    std::optional<std::stop_callback<OnStop>> m_onStop;
};

SSEStream::State::State(Result<HTTPExchange::Request> request, URLSession session, std::stop_token stop)
    : m_stop(std::move(stop)) {
    if (!request || m_stop.stop_requested()) {
        fail(request ? APIError::network() : request.error());
        return;
    }
    m_exchange =
        std::make_unique<HTTPExchange>(*std::move(request), std::move(session), std::numeric_limits<qint64>::max());
    connect(m_exchange.get(), &HTTPExchange::responded, this, &State::onResponse);
    connect(m_exchange.get(), &HTTPExchange::readyRead, this, &State::wake);
    // Queued, since an exchange also ends while its manager is being destroyed, and nobody is to run then.
    connect(m_exchange.get(), &HTTPExchange::ended, this, &State::wake, Qt::QueuedConnection);
    m_exchange->start();
    m_onStop.emplace(m_stop, OnStop{this});
}

bool SSEStream::State::advance() {
    if (m_stop.stop_requested() && !(m_over && m_at == m_events.size())) {
        forgetEvents();
        fail(APIError::network());
    }
    while (m_at == m_events.size() && !m_over) {
        forgetEvents();
        if (!readMore())
            return false;
    }
    return true;
}

/// @return false when there is nothing to do before the exchange reports again
bool SSEStream::State::readMore() {
    if (m_parsed == m_chunk.size()) {
        m_chunk = m_exchange->take();
        m_parsed = 0;
        if (m_chunk.isEmpty()) {
            if (!m_exchange->end())
                return false;
            conclude();
            return true;
        }
    }
    if (isRefusal()) {
        readErrorBody();
        return true;
    }
    const auto slice = QByteArrayView(m_chunk).sliced(m_parsed, qMin(sliceSize, m_chunk.size() - m_parsed));
    m_parsed += slice.size();
    if (!m_parser.feed(slice, m_events))
        fail(APIError::invalidResponse());
    return true;
}

void SSEStream::State::readErrorBody() {
    m_errorBody += std::exchange(m_chunk, {});
    if (m_errorBody.size() > maxErrorBody)
        fail(APIError::fromAnswer(*m_exchange->status(), {}));
}

/// The exchange has ended and everything it brought is parsed.
void SSEStream::State::conclude() {
    // A refusal's status is known whatever became of its body.
    if (m_exchange->status() && isRefusal())
        return fail(APIError::fromAnswer(*m_exchange->status(), m_errorBody));
    if (const auto failure = m_exchange->failure())
        return fail(*failure);
    if (!m_parser.finish(m_events))
        return fail(APIError::invalidResponse());
    m_over = true;
}

void SSEStream::State::fail(APIError error) {
    m_over = true;
    m_error = std::move(error);
    m_chunk.clear();
    m_parsed = 0;
    if (m_exchange)
        m_exchange->stop();
}

void SSEStream::State::wait(std::coroutine_handle<> handle) {
    Q_ASSERT(!m_waiting);
    m_waiting = handle;
}

SSEStream::Next SSEStream::State::take() {
    if (m_at < m_events.size())
        return Next(std::in_place, std::move(m_events[m_at++]));
    if (m_error)
        return std::unexpected(*m_error);
    return std::nullopt;
}

void SSEStream::State::abandon() {
    // From here on nobody is to be resumed, not even by a wake-up that is queued already.
    m_waiting = nullptr;
    m_over = true;
    m_onStop.reset();
    if (m_exchange) {
        m_exchange->disconnect(this);
        m_exchange->stop();
    }
    deleteLater();
}

void SSEStream::State::onResponse() {
    if (isRefusal())
        QTimer::singleShot(errorBodyTime, m_exchange.get(), &HTTPExchange::stop);
}

void SSEStream::State::wake() {
    // What nobody pulls stays unread.
    if (!m_waiting && !m_stop.stop_requested())
        return;
    const bool ready = advance();
    if (m_waiting && ready)
        std::exchange(m_waiting, nullptr).resume();
}

SSEStream::SSEStream(Result<HTTPExchange::Request> request, URLSession session, std::stop_token stop)
    : m_state(new State(std::move(request), std::move(session), std::move(stop))) {}

void SSEStream::Abandon::operator()(State *state) const {
    state->abandon();
}

bool SSEStream::advance(State &state) {
    return state.advance();
}

void SSEStream::wait(State &state, std::coroutine_handle<> handle) {
    state.wait(handle);
}

SSEStream::Next SSEStream::take(State &state) {
    return state.take();
}

} // namespace lmp
