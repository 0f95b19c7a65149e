#include "core/HTTPCall.h"

#include "core/ExchangeAwaiter.h"

#include <memory>

namespace lmp {

namespace {

struct StopExchange {
    HTTPExchange *exchange;
    void operator()() const { QMetaObject::invokeMethod(exchange, &HTTPExchange::stop, Qt::QueuedConnection); }
};

} // namespace

QCoro::Task<HTTPCall::Outcome> HTTPCall::run(HTTPExchange::Request request, URLSession session, qint64 maxBytes,
                                             std::stop_token stop) {
    // Left to the event loop at the end: the coroutine may be resumed from one of its own signals.
    const std::unique_ptr<HTTPExchange, void (*)(HTTPExchange *)> running(
        new HTTPExchange(std::move(request), std::move(session), maxBytes), [](HTTPExchange *e) { e->deleteLater(); });
    const std::stop_callback onStop(std::move(stop), StopExchange{running.get()});
    running->start();
    Outcome outcome;
    outcome.end = co_await ExchangeAwaiter(*running);
    outcome.status = running->status();
    if (outcome.end == HTTPExchange::End::Complete)
        outcome.body = running->take();
    outcome.failure = running->failure();
    co_return outcome;
}

} // namespace lmp
