#include "screens/shell/TelemetryModel.h"

#include "core/Telemetry.h"

namespace lmp {

TelemetryModel::TelemetryModel(Telemetry *telemetry, QObject *parent)
    : QObject(parent)
    , m_telemetry(telemetry) {
    if (!telemetry)
        return;
    connect(telemetry, &Telemetry::consentChanged, this, &TelemetryModel::changed);
    connect(telemetry, &Telemetry::noticeSeenChanged, this, &TelemetryModel::changed);
}

bool TelemetryModel::consent() const {
    return m_telemetry && m_telemetry->consentProduct();
}

void TelemetryModel::setConsent(bool consent) {
    // Who has found the switch has found the question.
    answer(consent);
}

bool TelemetryModel::asking() const {
    return m_telemetry && !m_telemetry->noticeSeen();
}

void TelemetryModel::answer(bool consent) {
    if (!m_telemetry)
        return;
    m_telemetry->setConsentProduct(consent);
    m_telemetry->markNoticeSeen();
}

} // namespace lmp
