#pragma once

#include "core/JSONValue.h"

#include <QList>
#include <QMap>

#include <boost/describe.hpp>

namespace lmp {

/// What an event is about, e.g. the type "principal" and the user's id.
struct EventSubject {
    QString type;
    QString id;
    bool operator==(const EventSubject &) const = default;
};
BOOST_DESCRIBE_STRUCT(EventSubject, (), (type, id))

/// One recorded event, waiting to be sent.
struct QueuedEvent {
    QString eventId;
    QString eventName;
    QString occurredAt; ///< ISO 8601, UTC
    EventSubject subject;
    QMap<QString, double> metrics;
    QMap<QString, JSONValue> props;
    int schemaVersion = 1;
    bool operator==(const QueuedEvent &) const = default;
};
BOOST_DESCRIBE_STRUCT(QueuedEvent, (), (eventId, eventName, occurredAt, subject, metrics, props, schemaVersion))

/// The usage session, which a pause of more than half an hour ends.
struct SessionState {
    QString id;
    QString startedAt;
    QString lastSeenAt;
    bool operator==(const SessionState &) const = default;
};
BOOST_DESCRIBE_STRUCT(SessionState, (), (id, startedAt, lastSeenAt))

struct BatchContext {
    QString platform;
    QString appVersion;
    QString sessionId;
    QString anonId;
    QString locale;
    QString viewport;  ///< "1200x800", or "terminal"
    QString model;     ///< the machine's processor architecture; nothing that tells one machine from its like
    QString requestId; ///< new for each batch
};
BOOST_DESCRIBE_STRUCT(BatchContext, (), (platform, appVersion, sessionId, anonId, locale, viewport, model, requestId))

struct Consent {
    bool essential = true;
    bool product = false;
};
BOOST_DESCRIBE_STRUCT(Consent, (), (essential, product))

/// The body of one flush.
struct TelemetryBatch {
    BatchContext context;
    Consent consent;
    QList<QueuedEvent> events;
    QString sentAt;
};
BOOST_DESCRIBE_STRUCT(TelemetryBatch, (), (context, consent, events, sentAt))

} // namespace lmp
