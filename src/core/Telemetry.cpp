#include "core/Telemetry.h"

#include "core/Detach.h"
#include "core/HTTPCall.h"
#include "core/RandomHex.h"
#include "core/RequestURL.h"
#include "platform/Log.h"

#include <QLocale>
#include <QSysInfo>

#include <algorithm>
#include <cmath>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString anonKey = u"lmp.telemetry.anon.v1"_s;
const QString queueKey = u"lmp.telemetry.queue.v1"_s;
const QString consentKey = u"lmp.telemetry.consent.product.v1"_s;
const QString noticeKey = u"lmp.telemetry.notice.seen.v1"_s;
const QString sessionKey = u"lmp.telemetry.session.v1"_s;

constexpr std::chrono::milliseconds sessionPause = 1800s;
constexpr std::chrono::milliseconds sessionGrain = 60s;
constexpr auto persistDelay = 250ms;
constexpr auto flushInterval = 60s;
constexpr qint64 maxAnswerBytes = 64 * 1024;

const QByteArray yes = "true";
const QByteArray no = "false";

Telemetry *installed = nullptr;

/// Events that the service alone may record: a client's word for them would be worth nothing.
bool isTheServices(const QString &name) {
    static const QStringList names{u"progress.verified"_s, u"ai.cost.recorded"_s, u"companion.consistency_check.run"_s,
                                   u"safety.crisis.detected"_s};
    return names.contains(name);
}

bool isEssential(const QString &name) {
    return name.startsWith("stability."_L1) || name.startsWith("safety."_L1);
}

bool isAnonId(const QString &id) {
    return id.startsWith("anon_"_L1) && id.size() > 5 && std::ranges::all_of(id.sliced(5), [](QChar c) {
               return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f');
           });
}

QDateTime parsed(const QString &timestamp) {
    return QDateTime::fromString(timestamp, Qt::ISODateWithMs);
}

/// What the answer's status means for the events that were sent.
bool isDone(const HTTPCall::Outcome &outcome) {
    const int status = outcome.status.value_or(0);
    return (status >= 200 && status < 300) || (status >= 400 && status < 500 && status != 429);
}

} // namespace

Telemetry::Telemetry(Deployment deployment, Settings &settings, Clock &clock)
    : m_deployment(std::move(deployment))
    , m_settings(settings)
    , m_clock(clock) {
    m_consentProduct = m_settings.value(consentKey) == yes;
    loadAnonId();
    loadSession();
    loadQueue();
}

Telemetry::~Telemetry() {
    if (installed == this)
        install(nullptr);
    m_stop.request_stop();
    m_flushed.request_stop();
    persist();
}

void Telemetry::install(Telemetry *telemetry) {
    installed = telemetry;
    if (!telemetry) {
        DecodeFailureSink::install({});
        return;
    }
    DecodeFailureSink::install([](const QString &endpoint, const QString &reason, int status) {
        // The path alone: a query may hold what was typed.
        if (auto *to = shared())
            to->record(u"stability.client.error"_s, to->installation(),
                       {{u"endpoint"_s, endpoint.section(u'?', 0, 0)},
                        {u"kind"_s, u"decode_failed"_s},
                        {u"reason"_s, reason},
                        {u"status"_s, status}});
    });
}

Telemetry *Telemetry::shared() {
    return installed;
}

void Telemetry::note(const QString &name, const EventSubject &subject, const Props &props, const Metrics &metrics) {
    if (installed)
        installed->record(name, subject, props, metrics);
}

// What is kept

void Telemetry::loadAnonId() {
    m_anonId = QString::fromUtf8(m_settings.value(anonKey).value_or(QByteArray()));
    if (isAnonId(m_anonId))
        return;
    m_anonId = u"anon_"_s + randomHex(32);
    m_settings.setValue(anonKey, m_anonId.toUtf8());
}

void Telemetry::loadSession() {
    m_session = Json::decode<SessionState>(m_settings.value(sessionKey).value_or("{}")).value_or(SessionState{});
    m_sessionPersisted = parsed(m_session.lastSeenAt);
}

/// Event by event, so that one that is damaged costs no other.
void Telemetry::loadQueue() {
    const auto stored = m_settings.value(queueKey);
    if (!stored)
        return;
    const auto events = Json::decode<std::vector<boost::json::value>>(*stored);
    if (!events) {
        qCWarning(logTelemetry) << "the stored queue could not be understood and was dropped";
        return;
    }
    for (const auto &value : *events) {
        if (auto event = Json::fromValue<QueuedEvent>(value);
            event && std::ranges::all_of(event->metrics, [](double metric) { return std::isfinite(metric); }))
            m_queue.push_back(*std::move(event));
    }
    if (m_queue.size() > maxQueued)
        m_queue.remove(0, m_queue.size() - maxQueued);
}

void Telemetry::persist() {
    if (m_dirty)
        m_dirty = !m_settings.setValue(queueKey, Json::encode(m_queue));
    const QDateTime seen = parsed(m_session.lastSeenAt);
    if (!seen.isValid() || seen == m_sessionPersisted)
        return;
    const bool fresh = !m_sessionPersisted.isValid() || m_session.startedAt == m_session.lastSeenAt;
    const bool grown = std::abs(m_sessionPersisted.msecsTo(seen)) >= sessionGrain.count();
    if ((fresh || grown || m_stop.stop_requested()) && m_settings.setValue(sessionKey, Json::encode(m_session)))
        m_sessionPersisted = seen;
}

QCoro::Task<> Telemetry::persistSoon() {
    const QPointer self(this);
    m_persistWaiting = true;
    co_await m_clock.sleep(persistDelay, m_stop.get_token());
    if (!self)
        co_return;
    m_persistWaiting = false;
    persist();
}

// Consent

void Telemetry::setConsentProduct(bool consent) {
    m_settings.setValue(consentKey, consent ? yes : no);
    if (std::exchange(m_consentProduct, consent) == consent)
        return;
    if (!consent && m_queue.removeIf([](const QueuedEvent &event) { return !isEssential(event.eventName); }) > 0) {
        m_dirty = true;
        persist();
    }
    Q_EMIT consentChanged();
}

bool Telemetry::noticeSeen() const {
    return m_settings.value(noticeKey) == yes;
}

void Telemetry::markNoticeSeen() {
    m_settings.setValue(noticeKey, yes);
    Q_EMIT noticeSeenChanged();
}

// Recording

EventSubject Telemetry::installation() const {
    return {u"installation"_s, m_anonId};
}

QString Telemetry::timestamp() const {
    return m_clock.now().toUTC().toString(Qt::ISODateWithMs);
}

/// @return whether a new usage session has begun
bool Telemetry::touchSession() {
    const QDateTime last = parsed(m_session.lastSeenAt);
    // A clock that was set back must not keep a session alive for years.
    const bool goesOn =
        !m_session.id.isEmpty() && last.isValid() && std::abs(last.msecsTo(m_clock.now())) <= sessionPause.count();
    const QString now = timestamp();
    if (goesOn)
        m_session.lastSeenAt = now;
    else
        m_session = {u"sess_"_s + randomHex(24), now, now};
    return !goesOn;
}

bool Telemetry::mayRecord(const QString &name) const {
    return !isTheServices(name) && (m_consentProduct || isEssential(name));
}

void Telemetry::record(const QString &name, const EventSubject &subject, const Props &props, const Metrics &metrics) {
    if (!mayRecord(name))
        return;
    if (touchSession())
        append(u"engagement.session.started"_s, installation(), {}, {});
    append(name, subject, props, metrics);
}

void Telemetry::append(const QString &name, const EventSubject &subject, const Props &props, const Metrics &metrics) {
    if (!mayRecord(name))
        return;
    QueuedEvent event{u"evt_"_s + randomHex(24), name, timestamp(), subject, {}, props};
    for (const auto &[key, value] : metrics.asKeyValueRange()) {
        if (std::isfinite(value))
            event.metrics.insert(key, value);
    }
    m_queue.push_back(std::move(event));
    if (m_queue.size() > maxQueued)
        m_queue.remove(0, m_queue.size() - maxQueued);
    m_dirty = true;
    if (!m_persistWaiting)
        detach(persistSoon(), "Telemetry::persistSoon");
    if (m_queue.size() >= batchSize)
        flush();
}

void Telemetry::startLifecycle(std::chrono::nanoseconds processStartAt) {
    if (std::exchange(m_didStartLifecycle, true))
        return;
    const bool fresh = touchSession();
    const std::chrono::duration<double, std::milli> duration = m_clock.monotonic() - processStartAt;
    append(u"stability.app.cold_start"_s, installation(), {{u"appVersion"_s, m_deployment.appVersion}},
           {{u"duration"_s, duration.count()}});
    if (fresh)
        append(u"engagement.session.started"_s, installation(), {}, {});
    detach(flushPeriodically(), "Telemetry::flushPeriodically");
}

// Sending

void Telemetry::flush() {
    if (!m_flushing && !m_queue.isEmpty() && !m_stop.stop_requested())
        detach(runFlush(), "Telemetry::flush");
}

QCoro::Task<> Telemetry::runFlush() {
    const QPointer self(this);
    m_flushing = true;
    bool more = true;
    while (more) {
        const QList<QueuedEvent> sent = m_queue.first(std::min(batchSize, m_queue.size()));
        auto request = batchRequest(sent);
        if (!request)
            break;
        // Nothing waits for a network here: the events do that better.
        const URLSession session{.requestTimeout = 15s, .resourceTimeout = 60s, .online = [] {
                                     return true;
                                 }};
        const auto outcome = co_await HTTPCall::run(*std::move(request), session, maxAnswerBytes, m_stop.get_token());
        if (!self)
            co_return;
        const bool done = isDone(outcome);
        if (done)
            removeSent(sent);
        more = done && !m_stop.stop_requested() && !m_queue.isEmpty() && (m_draining || m_queue.size() >= batchSize);
    }
    m_flushing = false;
    std::exchange(m_flushed, std::stop_source()).request_stop();
}

std::optional<HTTPExchange::Request> Telemetry::batchRequest(const QList<QueuedEvent> &events) const {
    const auto url = RequestURL::join(m_deployment.apiBase, u"/telemetry/events"_s);
    if (!url)
        return std::nullopt;
    const TelemetryBatch batch{{u"macos"_s, m_deployment.appVersion, m_session.id, m_anonId,
                                QLocale::system().bcp47Name(), m_deployment.viewport,
                                QSysInfo::currentCpuArchitecture(), u"req_"_s + randomHex(24)},
                               {.essential = true, .product = m_consentProduct},
                               events,
                               timestamp()};
    HTTPExchange::Request request{
        "POST", *url, {{"Content-Type", "application/json"}, {"Accept", "application/json"}}, Json::encode(batch)};
    std::ranges::move(APIClient(m_deployment.apiBase, m_deployment.tokenProvider).tokenHeaders(),
                      std::back_inserter(request.headers));
    return request;
}

/// By id: the oldest may have been pushed out of the queue meanwhile, and others appended.
void Telemetry::removeSent(const QList<QueuedEvent> &sent) {
    m_queue.removeIf([&](const QueuedEvent &event) {
        return std::ranges::find(sent, event.eventId, &QueuedEvent::eventId) != sent.end();
    });
    m_dirty = true;
    persist();
}

QCoro::Task<> Telemetry::flushPeriodically() {
    const QPointer self(this);
    const auto stop = m_stop.get_token();
    while (co_await m_clock.sleep(flushInterval, stop)) {
        if (!self)
            co_return;
        flush();
    }
}

void Telemetry::enteredBackground() {
    persist();
    flush();
}

QCoro::Task<> Telemetry::flushForExit(std::chrono::milliseconds limit) {
    const QPointer self(this);
    persist();
    m_draining = true;
    flush();
    if (m_flushing)
        co_await m_clock.sleep(limit, m_flushed.get_token());
    if (!self)
        co_return;
    m_stop.request_stop();
    persist();
}

} // namespace lmp
