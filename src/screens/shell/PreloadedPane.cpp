#include "screens/shell/PreloadedPane.h"

#include "screens/shell/QmlModules.h"

#include <QCoreApplication>
#include <QQmlComponent>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// There when the last run ended signed in.
const QString signedInKey = u"lmp.window.signedin.v1"_s;

} // namespace

PreloadedPane::PreloadedPane(QQmlEngine &engine, Settings &settings)
    : m_engine(engine)
    , m_settings(settings) {
    QmlModules::provide(engine);
    // One thread reads them in turn: what the window is made with must not wait behind what comes after it.
    read("Main"_L1);
}

PreloadedPane::~PreloadedPane() = default;

void PreloadedPane::whenWindowRead(std::function<void()> then) {
    if (window().isLoading())
        QObject::connect(&window(), &QQmlComponent::statusChanged, &window(), then,
                         Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
    else
        QMetaObject::invokeMethod(&window(), then, Qt::QueuedConnection);
}

bool PreloadedPane::guess(std::optional<bool> signedIn) {
    const bool shell = signedIn.value_or(m_settings.value(signedInKey).has_value());
    read(shell ? "MainShell"_L1 : "SignedOutPane"_L1);
    read("LaunchPane"_L1);
    return shell;
}

void PreloadedPane::read(QLatin1StringView screen) {
    const QUrl file(u"qrc:/qt/qml/Lumenpair/Shell/%1.qml"_s.arg(screen));
    m_read.push_back(std::make_unique<QQmlComponent>(&m_engine, file, QQmlComponent::Asynchronous));
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
