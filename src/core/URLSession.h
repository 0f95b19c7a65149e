#pragma once

#include "core/APIError.h"

#include <QNetworkAccessManager>

#include <chrono>
#include <functional>

namespace lmp {

/// How long a request may take, and the network it goes through.
///
/// A value; any thread. Requests started on one thread share that thread's network access managers.
struct URLSession {
    std::chrono::milliseconds requestTimeout;  ///< longest silence
    std::chrono::milliseconds resourceTimeout; ///< longest whole, waiting for connectivity included; 0 is no limit
    APIError::Session kind = APIError::Session::Normal;
    qint64 readBuffer = 0; ///< bytes kept for a slow reader before the sender is slowed; 0 is no limit
    /// Goes through a network access manager of its own. One keeps at most six connections to a host: open streams
    /// among ordinary requests would leave those waiting.
    bool streams = false;
    /// Whether the machine has any connectivity; asked before a request to another machine and then once a second.
    std::function<bool()> online = systemIsOnline;

    static URLSession normal(); ///< 20 s of silence, 30 s in all
    static URLSession slow();   ///< 90 s of silence, 180 s in all
    static URLSession events(); ///< 180 s of silence, no end

    /// The calling thread's manager for such requests, made at its first use.
    QNetworkAccessManager &manager() const;

    /// True when any interface but loopback is up and has an address.
    static bool systemIsOnline();
};

} // namespace lmp
