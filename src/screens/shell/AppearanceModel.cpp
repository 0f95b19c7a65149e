#include "screens/shell/AppearanceModel.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace lmp {

using namespace Qt::StringLiterals;

const QString AppearanceModel::themeKey = u"lmp.appearance.theme.v1"_s;
const QString AppearanceModel::scaleKey = u"lmp.appearance.scale.v1"_s;
const QString AppearanceModel::systemKey = u"lmp.appearance.system.v1"_s;

namespace {

constexpr std::array<const char *, 3> choiceNames{"system", "light", "dark"};

} // namespace

AppearanceModel::AppearanceModel(Settings &settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings) {
    connect(&m_system, &SystemAppearance::changed, this, &AppearanceModel::onSystemChanged);
    load();
    settle();
}

void AppearanceModel::load() {
    const QByteArray theme = m_settings.value(themeKey).value_or(QByteArray());
    const auto named = std::ranges::find_if(choiceNames, [&theme](const char *name) { return theme == name; });
    m_choice = named == choiceNames.end() ? Choice::System : Choice(named - choiceNames.begin());
    const int kept = int(scaleSteps().indexOf(m_settings.value(scaleKey).value_or(QByteArray()).toInt()));
    m_step = kept < 0 ? 1 : kept;
    const auto system = m_settings.value(systemKey);
    m_systemDark = system ? *system == "dark" : m_system.dark();
}

void AppearanceModel::setChoice(Choice choice) {
    if (choice == m_choice)
        return;
    m_choice = choice;
    m_settings.setValue(themeKey, choiceNames.at(std::size_t(choice)));
    Q_EMIT choiceChanged();
    settle();
}

void AppearanceModel::setScale(qreal scale) {
    const QList<int> steps = scaleSteps();
    const auto nearest =
        std::ranges::min_element(steps, {}, [scale](int step) { return std::abs(step - scale * 100); });
    setScaleStep(int(nearest - steps.begin()));
}

QStringList AppearanceModel::scaleTexts() {
    QStringList texts;
    for (const int step : scaleSteps())
        texts << QString::number(step) + u'%';
    return texts;
}

void AppearanceModel::setScaleStep(int step) {
    const int bounded = std::clamp(step, 0, int(scaleSteps().size()) - 1);
    if (bounded == m_step)
        return;
    Q_EMIT scaleChanging();
    m_step = bounded;
    m_settings.setValue(scaleKey, QByteArray::number(scaleSteps().at(m_step)));
    Q_EMIT scaleChanged();
}

void AppearanceModel::onSystemChanged() {
    if (m_systemDark != m_system.dark() || !m_settings.value(systemKey)) {
        m_systemDark = m_system.dark();
        m_settings.setValue(systemKey, m_systemDark ? "dark" : "light");
    }
    if (m_reducedMotion != m_system.reducedMotion()) {
        m_reducedMotion = m_system.reducedMotion();
        Q_EMIT reducedMotionChanged();
    }
    settle();
}

void AppearanceModel::settle() {
    const bool dark = m_choice == Choice::System ? m_systemDark : m_choice == Choice::Dark;
    if (dark == m_dark)
        return;
    m_dark = dark;
    Q_EMIT darkChanged();
}

} // namespace lmp
