#include "screens/shell/PreloadedPane.h"

#include <QCoreApplication>
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

QUrl PreloadedPane::file(QLatin1StringView screen) {
    return QUrl(u"qrc:/qt/qml/Lumenpair/Shell/%1.qml"_s.arg(screen));
}

void PreloadedPane::begin(QQmlEngine &engine, std::optional<bool> signedIn) {
    const bool shell = signedIn.value_or(m_settings.value(signedInKey).has_value());
    // One thread reads them in turn: what the window is made with must not wait behind what comes after it.
    for (const auto pane : {"Main"_L1, "LaunchPane"_L1, shell ? "MainShell"_L1 : "SignedOutPane"_L1})
        m_read.push_back(std::make_unique<QQmlComponent>(&engine, file(pane), QQmlComponent::Asynchronous));
}

void PreloadedPane::goOn() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::User);
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
