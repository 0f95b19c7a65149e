#include "TelemetryLog.h"

#include "JsonFields.h"
#include "SandboxAccount.h"
#include "SandboxDatabase.h"
#include "SandboxFailure.h"
#include "SandboxOptions.h"

namespace lmp::sandbox {

namespace {

void requireEvent(const boost::json::value &event, const std::string &where) {
    if (!event.is_object())
        throw SandboxFailure::badField(where, "对象");
    const JsonFields fields(event.as_object(), where + ".");
    for (const auto *key : {"eventId", "eventName", "occurredAt"})
        fields.text(key);
    fields.child("subject");
    fields.child("metrics");
    fields.child("props");
    if (!fields.optionalInteger("schemaVersion"))
        throw SandboxFailure::badField(where + ".schemaVersion", "整数");
}

} // namespace

TelemetryLog::TelemetryLog(SandboxDatabase &database, const SandboxOptions &options)
    : m_database(database)
    , m_options(options) {}

void TelemetryLog::add(const boost::json::object &batch) {
    const JsonFields fields(batch);
    const auto context = boost::json::serialize(fields.child("context"));
    const JsonFields consentFields(fields.child("consent"), "consent.");
    for (const auto *key : {"essential", "product"})
        if (!consentFields.optionalBool(key))
            throw SandboxFailure::badField(std::string("consent.") + key, "布尔值");
    const auto consent = boost::json::serialize(fields.child("consent"));
    const auto sentAt = fields.text("sentAt");
    const auto &events = fields.list("events");
    std::size_t index = 0;
    for (const auto &event : events)
        requireEvent(event, "events[" + std::to_string(index++) + "]");

    m_database.write([&](SQLite::Database &database) {
        for (const auto &event : events) {
            SQLite::Statement insert(database, "INSERT OR IGNORE INTO telemetry(event_id, event, context, consent, "
                                               "sent_at, received_at) VALUES(?, ?, ?, ?, ?, ?)");
            insert.bind(1, std::string(event.as_object().at("eventId").as_string()));
            insert.bind(2, boost::json::serialize(event));
            insert.bind(3, context);
            insert.bind(4, consent);
            insert.bind(5, sentAt);
            insert.bind(6, m_options.now());
            insert.exec();
        }
    });
}

boost::json::object TelemetryLog::all() {
    return m_database.read([](SQLite::Database &database) {
        boost::json::array events;
        SQLite::Statement select(database,
                                 "SELECT event, context, consent, sent_at, received_at FROM telemetry ORDER BY id");
        while (select.executeStep()) {
            auto event = parseJsonObject(select.getColumn(0).getString());
            event["context"] = parseJsonObject(select.getColumn(1).getString());
            event["consent"] = parseJsonObject(select.getColumn(2).getString());
            event["sentAt"] = select.getColumn(3).getString();
            event["receivedAt"] = isoTime(select.getColumn(4).getInt64());
            events.push_back(std::move(event));
        }
        return boost::json::object{{"events", std::move(events)}};
    });
}

} // namespace lmp::sandbox
