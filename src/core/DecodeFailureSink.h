#pragma once

#include <QString>

#include <functional>

namespace lmp {

/// Where an answer that did not decode is reported: the telemetry recorder puts itself here, so that the client does
/// not need to know it.
///
/// `report` may be called on any thread and hops to the UI thread; `install` belongs to the UI thread.
class DecodeFailureSink {
public:
    /// @param endpoint path of the request; `reason` the sentence for people; `status` the HTTP status
    using Sink = std::function<void(QString endpoint, QString reason, int status)>;

    static void install(Sink sink);
    static void report(const QString &endpoint, const QString &reason, int status);
};

} // namespace lmp
