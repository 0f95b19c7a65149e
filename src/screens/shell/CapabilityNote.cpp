#include "screens/shell/CapabilityNote.h"

#include "core/PlainLabel.h"

#include <array>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestLabel = 60;
constexpr qsizetype longestNote = 500;

} // namespace

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

QString CapabilityNote::wording(const FeatureCapability &feature) {
    static const std::array levels{u"可用"_s, u"部分可用"_s, u"不可用"_s};
    QStringList parts{PlainLabel::line(feature.label, longestLabel), levels.at(std::size_t(feature.level))};
    if (feature.note && !feature.note->isEmpty())
        parts << PlainLabel::lines(*feature.note, longestNote);
    return parts.join(u" · "_s);
}

void CapabilityNote::look() {
    m_feature = m_store ? m_store->lookup(m_featureId) : std::nullopt;
    Q_EMIT changed();
}

} // namespace lmp
