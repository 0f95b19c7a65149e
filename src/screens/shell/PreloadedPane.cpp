#include "screens/shell/PreloadedPane.h"

#include <QQmlComponent>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// There when the last run ended signed in.
const QString signedInKey = u"lmp.window.signedin.v1"_s;

} // namespace

PreloadedPane::PreloadedPane(Settings &settings)
    : m_settings(settings) {}

PreloadedPane::~PreloadedPane() = default;

void PreloadedPane::begin(QQmlEngine &engine, std::optional<bool> signedIn) {
    const bool shell = signedIn.value_or(m_settings.value(signedInKey).has_value());
    const auto file = [](QLatin1StringView pane) {
        return QUrl(u"qrc:/qt/qml/Lumenpair/Shell/%1.qml"_s.arg(pane));
    };
    // The window is made with this one, and one thread reads them in turn: behind the other it would hold the window up.
    m_first = std::make_unique<QQmlComponent>(&engine, file("LaunchPane"_L1));
    m_pane = std::make_unique<QQmlComponent>(&engine, file(shell ? "MainShell"_L1 : "SignedOutPane"_L1),
                                             QQmlComponent::Asynchronous);
}

void PreloadedPane::keep(bool signedIn) {
    if (m_settings.value(signedInKey).has_value() == signedIn)
        return;
    if (signedIn)
        m_settings.setValue(signedInKey, "1");
    else
        m_settings.remove(signedInKey);
}

} // namespace lmp
