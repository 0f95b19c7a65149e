#pragma once

#include "core/HTTPExchange.h"

#include <coroutine>

namespace lmp {

/// Lets a coroutine wait for the end of an exchange that it owns; resumes through the event loop.
class ExchangeAwaiter {
public:
    explicit ExchangeAwaiter(HTTPExchange &exchange)
        : m_exchange(exchange) {}

    bool await_ready() const { return m_exchange.end().has_value(); }
    void await_suspend(std::coroutine_handle<> handle) {
        // The exchange is the context: with the frame that owns it goes the resumption.
        QObject::connect(
            &m_exchange, &HTTPExchange::ended, &m_exchange, [handle] { handle.resume(); },
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    }
    HTTPExchange::End await_resume() const { return *m_exchange.end(); }

private:
    HTTPExchange &m_exchange;
};

} // namespace lmp
