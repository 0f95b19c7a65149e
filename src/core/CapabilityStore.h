#pragma once

#include "core/APIClient.h"
#include "core/CapabilitiesResponse.h"

#include <QHash>
#include <QObject>

namespace lmp {

/// Which features work on this platform, and how well; looked up by whatever screen shows them.
///
/// Owned by the application for its whole life, UI thread. Empty until the first refresh that succeeds. Nothing here
/// fails: what cannot be fetched or read leaves the table as it was, and a feature without an entry is shown without a
/// note. Nothing is kept over a restart.
class CapabilityStore : public QObject {
    Q_OBJECT
    /// The service is being asked.
    Q_PROPERTY(bool asking READ asking NOTIFY askingChanged)
public:
    explicit CapabilityStore(APIClient api, QObject *parent = nullptr);
    ~CapabilityStore() override;

    /// Asks the service, once. Of several under way only the one begun last counts.
    QCoro::Task<> refresh();
    /// Has the service asked by a screen that is about to show the table; one that is being asked already serves.
    Q_INVOKABLE void ask();
    bool asking() const { return m_asking; }
    /// Takes the table over, unless it has the version that is here already.
    void apply(const CapabilitiesResponse &response);

    /// The feature's entry, or none. Never asks the service.
    std::optional<FeatureCapability> lookup(const QString &id) const;
    const QHash<QString, FeatureCapability> &byId() const { return m_byId; }
    /// The version of the table, 0 before the first.
    qint64 version() const { return m_version; }

Q_SIGNALS:
    /// Another table is here.
    void changed();
    void askingChanged();

private:
    void setAsking(bool asking);

    APIClient m_api;
    QHash<QString, FeatureCapability> m_byId;
    qint64 m_version = 0;
    quint64 m_refreshes = 0; ///< counts what was begun
    bool m_asking = false;
    std::stop_source m_stop;
};

} // namespace lmp
