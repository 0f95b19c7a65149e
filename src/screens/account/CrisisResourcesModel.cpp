#include "screens/account/CrisisResourcesModel.h"

#include "core/Detach.h"
#include "core/PlainLabel.h"
#include "identity/CrisisRegion.h"
#include "identity/CrisisTexts.h"

namespace lmp {

CrisisResourcesModel::CrisisResourcesModel(APIClient api, ExternalOpener &opener, QObject *parent)
    : QObject(parent)
    , m_service(std::move(api))
    , m_dialler(opener) {
    connect(&m_dialler, &Dialler::messageChanged, this, &CrisisResourcesModel::changed);
}

QString CrisisResourcesModel::entry() {
    return CrisisTexts::entry();
}

QString CrisisResourcesModel::entrySubtitle() {
    return CrisisTexts::entrySubtitle();
}

QString CrisisResourcesModel::backText() {
    return CrisisTexts::back();
}

QStringList CrisisResourcesModel::rules() {
    return CrisisTexts::rules();
}

QStringList CrisisResourcesModel::regions() {
    QStringList labels;
    for (const CrisisRegion &region : CrisisRegion::all())
        labels.push_back(region.label);
    return labels;
}

QString CrisisResourcesModel::heading() const {
    if (!m_answer)
        return {};
    return CrisisRegion::labelOf(m_answer->region) +
           (m_answer->hasVerifiedNumbers() ? QString() : CrisisTexts::regionWithoutList());
}

QString CrisisResourcesModel::guidance() const {
    return m_answer ? m_answer->guidance : QString();
}

QString CrisisResourcesModel::assumedText() const {
    return m_answer && m_answer->assumedRegion.value_or(false) ? CrisisTexts::assumedRegion() : QString();
}

QString CrisisResourcesModel::withoutNumbers() const {
    return m_answer && !m_answer->hasVerifiedNumbers() ? CrisisTexts::pageWithoutNumbers() : QString();
}

void CrisisResourcesModel::load() {
    drop();
    m_loading = true;
    Q_EMIT changed();
    detach(loadNow(), "CrisisResourcesModel::load");
}

QCoro::Task<> CrisisResourcesModel::loadNow() {
    const QPointer self(this);
    const auto generation = m_generation;
    auto answer = co_await m_service.load(CrisisRegion::all()[m_region].code);
    if (!self || generation != m_generation)
        co_return;
    m_loading = false;
    if (answer) {
        m_answer = *std::move(answer);
        std::vector<CrisisNumber> numbers;
        if (m_answer->hasVerifiedNumbers()) {
            for (const auto &item : m_answer->items)
                numbers.push_back({item.name, PlainLabel::line(item.phone), item.note.value_or(QString()), item.phone});
        }
        m_numbers.setRecords(std::move(numbers));
    } else {
        m_error = CrisisTexts::loadFailed(answer.error().reason);
    }
    Q_EMIT changed();
}

void CrisisResourcesModel::chooseRegion(int index) {
    if (index < 0 || index >= CrisisRegion::all().size())
        return;
    m_region = index;
    load();
}

void CrisisResourcesModel::dial(const QString &number) {
    m_dialler.dial(number);
}

void CrisisResourcesModel::close() {
    drop();
    m_region = 0;
    Q_EMIT changed();
}

void CrisisResourcesModel::drop() {
    ++m_generation;
    m_loading = false;
    m_answer.reset();
    m_error.clear();
    m_dialler.forget();
    m_numbers.setRecords({});
}

} // namespace lmp
