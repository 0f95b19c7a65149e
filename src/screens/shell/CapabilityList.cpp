#include "screens/shell/CapabilityList.h"

#include <algorithm>

namespace lmp {

CapabilityList::CapabilityList(QObject *parent)
    : QObject(parent) {}

void CapabilityList::setStore(CapabilityStore *store) {
    if (m_store)
        m_store->disconnect(this);
    m_store = store;
    if (m_store)
        connect(m_store, &CapabilityStore::changed, this, &CapabilityList::changed);
    Q_EMIT changed();
}

QStringList CapabilityList::ids() const {
    QStringList ids = m_store ? m_store->byId().keys() : QStringList();
    std::ranges::sort(ids);
    return ids;
}

} // namespace lmp
