#include "screens/shell/CapabilityList.h"

#include "screens/shell/CapabilityNote.h"

#include <algorithm>

namespace lmp {

namespace {

/// All of them are drawn; a table of more features than this is not one that anybody reads.
constexpr qsizetype mostShown = 200;

} // namespace

CapabilityList::CapabilityList(QObject *parent)
    : QAbstractListModel(parent) {}

void CapabilityList::setStore(CapabilityStore *store) {
    if (store == m_store)
        return;
    if (m_store)
        m_store->disconnect(this);
    m_store = store;
    if (m_store)
        connect(m_store, &CapabilityStore::changed, this, &CapabilityList::look);
    Q_EMIT sourceChanged();
    look();
}

void CapabilityList::setNav(const QString &nav) {
    if (nav == m_nav)
        return;
    m_nav = nav;
    Q_EMIT sourceChanged();
    look();
}

void CapabilityList::setAlso(const QStringList &ids) {
    if (ids == m_also)
        return;
    m_also = ids;
    Q_EMIT sourceChanged();
    look();
}

int CapabilityList::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant CapabilityList::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    return role == TextRole || role == Qt::DisplayRole ? m_texts[index.row()] : QVariant();
}

QHash<int, QByteArray> CapabilityList::roleNames() const {
    return {{TextRole, "text"}};
}

bool CapabilityList::belongs(const FeatureCapability &feature) const {
    return m_nav.isEmpty() || feature.nav == m_nav || m_also.contains(feature.id);
}

void CapabilityList::look() {
    // The service's table has no order of its own; a steady one is easier to read.
    QStringList ids = m_store ? m_store->byId().keys() : QStringList();
    std::ranges::sort(ids);
    beginResetModel();
    m_texts.clear();
    for (const QString &id : std::as_const(ids)) {
        const auto feature = m_store->lookup(id);
        if (feature && belongs(*feature) && m_texts.size() < mostShown)
            m_texts << CapabilityNote::wording(*feature);
    }
    endResetModel();
    Q_EMIT countChanged();
}

} // namespace lmp
