#include "screens/account/SafetyModel.h"

#include "core/Detach.h"
#include "core/PlainLabel.h"
#include "identity/CrisisRegion.h"
#include "identity/CrisisTexts.h"
#include "screens/account/Dialler.h"

#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;

SafetyModel::SafetyModel(SafetyGateStore &store, ExternalOpener &opener, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_opener(opener) {
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
    m_message.clear();
    ++m_dialled;
    Q_EMIT changed();
    if (crisisOpen())
        Q_EMIT crisisShown();
}

void SafetyModel::dial(const QString &number) {
    detach(dialNow(number), "SafetyModel::dial");
}

QCoro::Task<> SafetyModel::dialNow(QString number) {
    const QPointer self(this);
    const auto dialled = ++m_dialled;
    // What was said of the call before: said anew, it is noticed.
    if (!std::exchange(m_message, {}).isEmpty())
        Q_EMIT changed();
    QString message = co_await Dialler::dial(m_opener, number);
    if (!self || dialled != m_dialled)
        co_return;
    m_message = std::move(message);
    Q_EMIT changed();
}

void SafetyModel::closeCrisis() {
    m_store.closeCrisis();
}

void SafetyModel::closeContinuousUse() {
    m_store.closeContinuousUse();
}

} // namespace lmp
