#include "screens/shell/CapabilityNote.h"

namespace lmp {

CapabilityNote::CapabilityNote(QObject *parent)
    : QObject(parent) {}

void CapabilityNote::setFeatureId(const QString &id) {
    m_featureId = id;
    look();
}

void CapabilityNote::setStore(CapabilityStore *store) {
    if (m_store)
        m_store->disconnect(this);
    m_store = store;
    if (m_store)
        connect(m_store, &CapabilityStore::changed, this, &CapabilityNote::look);
    look();
}

CapabilityNote::Level CapabilityNote::level() const {
    return m_feature ? Level(int(m_feature->level)) : Level::Full;
}

QString CapabilityNote::label() const {
    return m_feature ? m_feature->label : QString();
}

QString CapabilityNote::note() const {
    return m_feature ? m_feature->note.value_or(QString()) : QString();
}

void CapabilityNote::look() {
    m_feature = m_store ? m_store->lookup(m_featureId) : std::nullopt;
    Q_EMIT changed();
}

} // namespace lmp
