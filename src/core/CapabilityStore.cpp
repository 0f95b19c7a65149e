#include "core/CapabilityStore.h"

#include "core/Detach.h"

#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;

CapabilityStore::CapabilityStore(APIClient api, QObject *parent)
    : QObject(parent)
    , m_api(std::move(api)) {}

CapabilityStore::~CapabilityStore() {
    m_stop.request_stop();
}

QCoro::Task<> CapabilityStore::refresh() {
    const QPointer self(this);
    const auto refresh = ++m_refreshes;
    setAsking(true);
    const auto answer = co_await m_api.request<CapabilitiesResponse>(u"/app/capabilities?platform=macos"_s, "GET",
                                                                     false, m_stop.get_token());
    if (!self || m_refreshes != refresh)
        co_return;
    if (answer)
        apply(*answer);
    setAsking(false);
}

void CapabilityStore::ask() {
    if (!m_asking)
        detach(refresh(), "asking for the capabilities");
}

void CapabilityStore::setAsking(bool asking) {
    if (std::exchange(m_asking, asking) != asking)
        Q_EMIT askingChanged();
}

void CapabilityStore::apply(const CapabilitiesResponse &response) {
    if (response.version == m_version)
        return;
    m_byId.clear();
    for (const FeatureCapability &feature : response.features)
        m_byId.insert(feature.id, feature);
    m_version = response.version;
    Q_EMIT changed();
}

std::optional<FeatureCapability> CapabilityStore::lookup(const QString &id) const {
    const auto found = m_byId.constFind(id);
    return found == m_byId.constEnd() ? std::nullopt : std::optional(*found);
}

} // namespace lmp
