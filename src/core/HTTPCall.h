#pragma once

#include "core/HTTPExchange.h"

#include <QCoroTask>

#include <stop_token>

namespace lmp {

/// One exchange as a coroutine, for answers that are wanted whole.
///
/// Free of state; any thread with an event loop.
class HTTPCall {
public:
    struct Outcome {
        HTTPExchange::End end = HTTPExchange::End::Failed;
        std::optional<int> status;       ///< as soon as the headers came, even when the rest did not
        QByteArray body;                 ///< of a complete answer
        std::optional<APIError> failure; ///< of an answer that is not complete
    };

    /// @param stop ends the exchange early, from any thread
    static QCoro::Task<Outcome> run(HTTPExchange::Request request, URLSession session, qint64 maxBytes,
                                    std::stop_token stop);
};

} // namespace lmp
