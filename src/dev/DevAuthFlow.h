#pragma once

#include "dev/DevSignIn.h"
#include "platform/Clock.h"

#include <QObject>

#include <map>

namespace lmp {

/// Signing the user in to the coding agents' own tools, in the browser; no credential passes through here.
///
/// A store, UI thread; one flow for each engine at a time. A flow that has ended, however it did, has ended its tool
/// and asks for the engine's readiness again. The address is shown and never logged.
class DevAuthFlow : public QObject {
    Q_OBJECT
public:
    struct Phase {
        enum class Kind { idle, starting, waiting, done, failed };
        Kind kind = Kind::idle;
        QString url = {};     ///< while waiting: what the user is to open
        QString message = {}; ///< why it failed
        bool operator==(const Phase &) const = default;
    };
    /// Asks for the readiness of an engine.
    using Probe = std::function<void(DevEngineKind kind)>;

    /// @param clock outlives this
    DevAuthFlow(Clock &clock, Probe probe, QObject *parent = nullptr);
    ~DevAuthFlow() override;

    Phase phase(DevEngineKind kind) const;

    /// Begins, unless it is under way already.
    void start(DevEngineKind kind);
    /// Ends what is under way, and goes back to idle.
    void cancel(DevEngineKind kind);

Q_SIGNALS:
    void changed(lmp::DevEngineKind kind);

private:
    struct Flow {
        Phase phase;
        quint64 generation = 0;
        std::shared_ptr<DevProcess> process;
        std::stop_source deadline;
    };

    QCoro::Task<> run(DevEngineKind kind);
    QCoro::Task<> expire(DevEngineKind kind, std::chrono::seconds limit, QString lateText);
    bool take(DevEngineKind kind, DevSignIn::Step step);
    void finish(DevEngineKind kind, Phase phase);
    void endProcess(Flow &flow);
    void setPhase(DevEngineKind kind, Phase phase);

    Clock &m_clock;
    const Probe m_probe;
    std::map<DevEngineKind, Flow> m_flows;
};

} // namespace lmp
