#include "screens/account/SafetyModel.h"

#include "core/PlainLabel.h"
#include "identity/CrisisRegion.h"
#include "identity/CrisisTexts.h"

namespace lmp {

using namespace Qt::StringLiterals;

SafetyModel::SafetyModel(SafetyGateStore &store, ExternalOpener &opener, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_dialler(opener) {
    connect(&m_dialler, &Dialler::messageChanged, this, &SafetyModel::changed);
    connect(&store, &SafetyGateStore::crisisChanged, this, &SafetyModel::onCrisis);
    connect(&store, &SafetyGateStore::continuousUseChanged, this, &SafetyModel::changed);
    onCrisis();
}

QString SafetyModel::crisisTitle() {
    return u"安全提示"_s;
}

QString SafetyModel::continuousUseTitle() {
    return u"歇一会儿"_s;
}

QString SafetyModel::crisisText() const {
    return m_store.crisis() ? m_store.crisis()->guidance : QString();
}

QString SafetyModel::crisisRegionText() const {
    const auto &crisis = m_store.crisis();
    if (!crisis || !crisis->assumedRegion || !crisis->hasVerifiedNumbers())
        return {};
    const QString region = crisis->region ? CrisisRegion::labelOf(*crisis->region) : CrisisRegion::fallback().label;
    return u"没读到你的所在地，先按%1给。"_s.arg(region);
}

QString SafetyModel::crisisWithoutNumbers() const {
    return m_store.crisis() && !m_store.crisis()->hasVerifiedNumbers() ? CrisisTexts::cardWithoutNumbers() : QString();
}

QString SafetyModel::continuousUseText() const {
    return m_store.continuousUse() ? m_store.continuousUse()->message : QString();
}

void SafetyModel::onCrisis() {
    const auto &crisis = m_store.crisis();
    std::vector<CrisisNumber> numbers;
    if (crisis && crisis->hasVerifiedNumbers()) {
        for (const CrisisResource &resource : crisis->resources)
            numbers.push_back({resource.label, PlainLabel::line(resource.phone), {}, resource.phone});
    }
    m_numbers.setRecords(std::move(numbers));
    m_dialler.forget();
    Q_EMIT changed();
    if (crisisOpen())
        Q_EMIT crisisShown();
}

void SafetyModel::dial(const QString &number) {
    m_dialler.dial(number);
}

void SafetyModel::closeCrisis() {
    m_store.closeCrisis();
}

void SafetyModel::closeContinuousUse() {
    m_store.closeContinuousUse();
}

} // namespace lmp
