#pragma once

#include "core/APIClient.h"
#include "core/TelemetryRecords.h"
#include "platform/Clock.h"
#include "platform/Settings.h"

#include <QObject>

namespace lmp {

/// The recorder of product and stability events: stamps them, keeps them over restarts, and posts them in batches.
///
/// The application makes one, `install`s it and owns it; UI thread. A run that must leave no trace makes none: then
/// nothing is read, made or written, and `note` does nothing. Nothing here fails outwards; what cannot be sent waits,
/// what cannot be kept is lost. No event holds a token, a password, a code or a message text.
class Telemetry : public QObject {
    Q_OBJECT
public:
    using Props = QMap<QString, JSONValue>;
    using Metrics = QMap<QString, double>;

    struct Deployment {
        QUrl apiBase;
        QString appVersion;
        QString viewport = {}; ///< what the person looks at: "terminal" or "window"
        APIClient::TokenProvider tokenProvider = {};
    };

    static constexpr qsizetype maxQueued = 200;
    static constexpr qsizetype batchSize = 20;

    /// @param settings, clock outlive the recorder
    Telemetry(Deployment deployment, Settings &settings, Clock &clock);
    ~Telemetry() override;

    /// Makes `telemetry` the shared one, which also hears of answers that did not decode; none takes it away again.
    static void install(Telemetry *telemetry);
    static Telemetry *shared();
    /// Records with the shared recorder, if there is one.
    static void note(const QString &name, const EventSubject &subject, const Props &props = {},
                     const Metrics &metrics = {});

    /// Appends one event; cheap. Names that only the service may record, and product events without consent, are
    /// dropped.
    void record(const QString &name, const EventSubject &subject, const Props &props = {}, const Metrics &metrics = {});
    /// The events of a program's start, once; the flush of every minute begins here.
    /// @param processStartAt when the process started, on `Clock::monotonic`
    void startLifecycle(std::chrono::nanoseconds processStartAt);
    /// The program is no longer looked at: what is queued is kept and sent.
    void enteredBackground();
    /// Sends one batch, unless one is on its way.
    void flush();
    /// Keeps the queue and sends what it can in `limit`; for an orderly exit.
    QCoro::Task<> flushForExit(std::chrono::milliseconds limit);

    /// Stored at once. Without consent the product events that wait are dropped too.
    void setConsentProduct(bool consent);
    bool consentProduct() const { return m_consentProduct; }
    /// Whether the person has seen the question about consent.
    bool noticeSeen() const;
    void markNoticeSeen();

    const QString &anonId() const { return m_anonId; }
    const SessionState &sessionState() const { return m_session; }
    const QList<QueuedEvent> &queue() const { return m_queue; }
    bool isFlushing() const { return m_flushing; }
    bool didStartLifecycle() const { return m_didStartLifecycle; }

Q_SIGNALS:
    void consentChanged();
    void noticeSeenChanged();

private:
    QCoro::Task<> runFlush();
    QCoro::Task<> flushPeriodically();
    QCoro::Task<> persistSoon();
    void persist();
    void loadAnonId();
    void loadSession();
    void loadQueue();
    bool touchSession();
    bool mayRecord(const QString &name) const;
    void append(const QString &name, const EventSubject &subject, const Props &props, const Metrics &metrics);
    void removeSent(const QList<QueuedEvent> &sent);
    EventSubject installation() const;
    QString timestamp() const;
    std::optional<HTTPExchange::Request> batchRequest(const QList<QueuedEvent> &events) const;

    Deployment m_deployment;
    Settings &m_settings;
    Clock &m_clock;
    QString m_anonId;
    SessionState m_session;
    QList<QueuedEvent> m_queue;
    bool m_consentProduct = false;
    bool m_didStartLifecycle = false;
    bool m_flushing = false;
    bool m_draining = false;       ///< on the way out: one batch after another
    bool m_dirty = false;          ///< the queue changed since it was persisted
    QDateTime m_sessionPersisted;  ///< `lastSeenAt` as persisted; it moves too often to be written each time
    bool m_persistWaiting = false; ///< and will be within a quarter of a second
    std::stop_source m_stop;
    std::stop_source m_flushed; ///< wakes whoever waits for the flush
};

} // namespace lmp
