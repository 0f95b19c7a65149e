#include "screens/shell/WindowApplication.h"

#include "core/Detach.h"
#include "platform/UserDefaults.h"
#include "screens/shell/QmlModules.h"
#include "screens/shell/WindowLog.h"
#include "screens/shell/WindowScene.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickWindow>
#include <QTimer>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

WindowApplication::WindowApplication(WindowOptions options, std::chrono::nanoseconds processStart)
    : m_options(std::move(options))
    , m_processStart(processStart)
    , m_settings(makeUserDefaults(ApplicationSupport(m_options.profile)))
    , m_appearance(*m_settings)
    , m_application(WindowApplication::options(m_options, processStart)) {
    QmlModules::provide(m_engine);
}

WindowApplication::~WindowApplication() {
    m_windows.clear();
}

Application::Options WindowApplication::options(const WindowOptions &options, std::chrono::nanoseconds processStart) {
    const QString token = qEnvironmentVariable("LMP_TOKEN");
    return {.site = options.site,
            .profile = options.profile,
            .token = token.isEmpty() ? std::nullopt : std::optional(token),
            .viewport = u"window"_s,
            .processStart = processStart};
}

int WindowApplication::run() {
    openWindow();
    if (m_windows.empty())
        return 1;
    return QGuiApplication::exec();
}

void WindowApplication::openWindow() {
    if (!m_windowType)
        m_windowType = std::make_unique<QQmlComponent>(&m_engine, QUrl(u"qrc:/qt/qml/Lumenpair/Shell/Main.qml"_s));
    if (!m_windowType->isReady()) {
        qCCritical(logWindow) << "no window:" << m_windowType->errorString();
        return;
    }
    auto scene = std::make_unique<WindowScene>(m_appearance);
    connect(scene.get(), &WindowScene::reopenRequested, this, [this] { detach(open(), "opening the service"); });
    std::unique_ptr<QObject> made(
        m_windowType->createWithInitialProperties({{u"scene"_s, QVariant::fromValue(scene.get())}}));
    auto *window = qobject_cast<QQuickWindow *>(made.get());
    if (!window) {
        qCCritical(logWindow) << "no window:" << m_windowType->errorString();
        return;
    }
    static_cast<void>(made.release());
    if (m_windows.empty()) {
        connect(window, &QQuickWindow::frameSwapped, this, &WindowApplication::onFirstFrame,
                Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
        // A window that starts minimised draws nothing.
        QTimer::singleShot(1s, this, &WindowApplication::onFirstFrame);
    }
    if (m_isOpen)
        scene->adopt(m_application);
    m_windows.push_back({std::move(scene), std::unique_ptr<QQuickWindow>(window)});
    window->show();
}

void WindowApplication::onFirstFrame() {
    if (m_opening || m_isOpen)
        return;
    const auto now = SystemClock().monotonic();
    qCDebug(logWindow) << "first frame after"
                       << std::chrono::duration_cast<std::chrono::milliseconds>(now - m_processStart).count() << "ms";
    m_appearance.follow();
    detach(open(), "opening the service");
}

QCoro::Task<> WindowApplication::open() {
    const QPointer self(this);
    m_opening = true;
    const auto opened = co_await m_application.open();
    if (!self)
        co_return;
    m_opening = false;
    m_isOpen = opened.has_value();
    for (const auto &shown : m_windows) {
        if (opened)
            shown.scene->adopt(m_application);
        else
            shown.scene->setOpenError(opened.error());
    }
}

} // namespace lmp
