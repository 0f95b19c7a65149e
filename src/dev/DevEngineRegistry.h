#pragma once

#include "dev/DevEngineKind.h"
#include "dev/DevProbe.h"
#include "dev/DevReadiness.h"
#include "platform/Clock.h"

#include <QObject>

#include <map>

namespace lmp {

/// Which engines can be used.
///
/// A store, owned by the application, UI thread. Asks only when told to; what cannot be found out is unknown, with the
/// reason, and nothing fails.
class DevEngineRegistry : public QObject {
    Q_OBJECT
public:
    using Readiness = DevReadiness;
    using Probe = std::function<QCoro::Task<Readiness>()>;
    using Probes = std::map<DevEngineKind, Probe>;

    /// @param probes one for each engine, see `localProbes` and `relay`
    DevEngineRegistry(Clock &clock, Probes probes, QObject *parent = nullptr);

    /// Those of the two tools on this computer.
    static Probes localProbes();
    /// What is known of the engine behind the service, without asking.
    static Readiness relay(bool signedIn);

    /// Asks all engines again, at once. Of several calls only the last one's answers count.
    QCoro::Task<> probe();

    /// Unknown before the first probe.
    Readiness readiness(DevEngineKind kind) const;
    /// When the last probe ended.
    std::optional<QDateTime> probedAt() const { return m_probedAt; }

Q_SIGNALS:
    void changed();

private:
    QCoro::Task<> probeOne(DevEngineKind kind);

    Clock &m_clock;
    const Probes m_probes;
    std::map<DevEngineKind, Readiness> m_readiness;
    std::optional<QDateTime> m_probedAt;
    quint64 m_generation = 0; ///< of the probe that counts
};

} // namespace lmp
