#include "screens/shell/WindowApplication.h"

#include "app/DeepLink.h"
#include "core/Detach.h"
#include "platform/Log.h"
#include "platform/ProcessPrivacy.h"
#include "platform/UserDefaults.h"
#include "screens/kit/LMPFonts.h"
#include "screens/shell/WindowScene.h"

#include <QFileOpenEvent>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickWindow>
#include <QSessionManager>
#include <QTimer>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using State = MacQuitCoordinator::State;

namespace {

/// How long a window waits for what it is to show.
constexpr auto blink = 100ms;
/// How long the files are still waited for when saving has taken too long.
constexpr std::chrono::milliseconds restForFiles = 1s;

} // namespace

WindowApplication::WindowApplication(WindowOptions options, std::chrono::nanoseconds processStartAt)
    : m_options(std::move(options))
    , m_processStartAt(processStartAt)
    , m_settings(makeUserDefaults(ApplicationSupport(m_options.profile)))
    , m_firstPane(m_engine, *m_settings)
    , m_appearance(*m_settings)
    , m_application(WindowApplication::options(m_options, processStartAt))
    , m_quitting([this] { return m_application.localInput().saveAll(); }, m_application.clock())
    , m_macLifecycle(m_quitting) {
    m_engine.setIncubationController(&m_incubation);
    qGuiApp->installEventFilter(this);
    connect(qGuiApp, &QGuiApplication::commitDataRequest, &m_macLifecycle, &MacAppLifecycle::saveForSession);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state != Qt::ApplicationActive && !m_leaving && m_application.telemetry())
            m_application.telemetry()->enteredBackground();
    });
    for (const auto signal : {&QGuiApplication::commitDataRequest, &QGuiApplication::saveStateRequest})
        connect(qGuiApp, signal, this, &WindowApplication::tellSession);
    connect(&m_quitting, &MacQuitCoordinator::stateChanged, this, &WindowApplication::ask);
    connect(&m_quitting, &MacQuitCoordinator::raiseRequested, this, [this] {
        // The person asked in the window in front, and the question may stand in another one.
        ask();
        raise();
    });
    connect(&m_quitting, &MacQuitCoordinator::terminationAllowed, this, [this] { detach(leave(), "leaving"); });
}

WindowApplication::~WindowApplication() {
    // The windows draw from the scenes, and the scenes from the shared models.
    for (auto &shown : m_windows)
        shown.window.reset();
    m_windows.clear();
}

Application::Options WindowApplication::options(const WindowOptions &options, std::chrono::nanoseconds processStartAt) {
    const QString token = ProcessPrivacy::take("LMP_TOKEN");
    return {.site = options.site,
            .profile = options.profile,
            .token = token.isEmpty() ? std::nullopt : std::optional(token),
            .viewport = u"window"_s,
            .processStartAt = processStartAt};
}

void WindowApplication::start() {
    // Screens are read and the keychain answers in threads of their own, and the first text needs its font: all at
    // once, and what the keychain says is heard and acted upon before there is a window.
    m_expectsShell = m_firstPane.guess(m_application.tokenIsGiven() ? std::optional(true) : std::nullopt);
    detach(open(), "opening the service");
    PreloadedPane::goOn();
    QFontMetrics(QFont(LMPFonts::family())).horizontalAdvance(u'正');
    m_firstPane.whenWindowRead([this] { openFirstWindow(); });
}

void WindowApplication::openFirstWindow() {
    if (m_leaving)
        return;
    WindowScene *scene = openWindow();
    if (!scene)
        return QCoreApplication::exit(1);
    if (!m_options.link.isEmpty())
        scene->navigation()->openLink(m_options.link);
}

WindowScene *WindowApplication::openWindow() {
    QQmlComponent &type = m_firstPane.window();
    if (!type.isReady()) {
        qCCritical(logApplication) << "no window:" << type.errorString();
        return nullptr;
    }
    const auto guess = m_expectsShell ? WindowScene::Stage::Shell : WindowScene::Stage::SignedOut;
    const auto expected = m_windows.empty() ? guess : WindowScene::Stage::Launch;
    auto made = std::make_unique<WindowScene>(m_appearance, *m_settings, m_quitting);
    WindowScene *scene = made.get();
    QQmlEngine::setObjectOwnership(scene, QQmlEngine::CppOwnership);
    join(scene);
    PreloadedPane::goOn();
    QObject *object =
        type.createWithInitialProperties({{u"scene"_s, QVariant::fromValue(scene)}, {u"expected"_s, int(expected)}});
    auto *window = qobject_cast<QQuickWindow *>(object);
    if (!window) {
        qCCritical(logApplication) << "no window:" << type.errorString();
        delete object;
        return nullptr;
    }
    if (m_windows.empty())
        connect(window, &QQuickWindow::frameSwapped, this, &WindowApplication::onFirstFrame,
                Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
    m_windows.push_back({std::move(made), std::unique_ptr<QQuickWindow>(window)});
    PreloadedPane::goOn();
    showWhenKnown(*window, *scene);
    PreloadedPane::goOn();
    return scene;
}

void WindowApplication::showWhenKnown(QQuickWindow &window, WindowScene &scene) {
    if (scene.layout()->maximized())
        window.setWindowStates(Qt::WindowMaximized);
    window.create();
    if (scene.stage() > WindowScene::Stage::Launch)
        return window.setVisible(true);
    // What is there for the blink of an eye only flickers, and delays what comes after it.
    auto *wait = new QTimer(&window);
    wait->setSingleShot(true);
    connect(wait, &QTimer::timeout, &window, [&window] { window.setVisible(true); });
    connect(&scene, &WindowScene::stageChanged, wait, [wait, &window, &scene] {
        if (!wait->isActive() || scene.stage() <= WindowScene::Stage::Launch)
            return;
        wait->stop();
        window.setVisible(true);
    });
    // Whoever leaves meanwhile must not see it come.
    connect(this, &WindowApplication::leaving, wait, &QTimer::stop);
    wait->start(blink);
}

void WindowApplication::join(WindowScene *scene) {
    connect(scene, &WindowScene::reopenRequested, this, [this] {
        if (!m_opening)
            detach(open(), "opening the service");
    });
    connect(scene, &WindowScene::closeRequested, this, [this, scene] { onCloseRequested(scene); });
    connect(scene, &WindowScene::readyToClose, this, [this, scene] { onReadyToClose(scene); }, Qt::QueuedConnection);
    connect(scene->commands(), &AppCommands::triggered, this, [this, scene](AppCommands::Command command) {
        if (command == AppCommands::Command::NewWindow)
            openWindow();
        else if (command == AppCommands::Command::CloseWindow)
            onCloseRequested(scene);
        else if (command == AppCommands::Command::Quit)
            quit();
    });
    if (m_shared)
        scene->adopt(*m_shared);
    else if (!m_openError.isEmpty())
        scene->setOpenError(m_openError);
}

void WindowApplication::onFirstFrame() {
    const auto taken = SystemClock().monotonic() - m_processStartAt;
    qCDebug(logApplication) << "first frame after"
                            << std::chrono::duration_cast<std::chrono::milliseconds>(taken).count() << "ms";
    m_appearance.follow();
    m_drawn = true;
    if (!m_expectsShell)
        askForNews();
}

void WindowApplication::askForNews() {
    if (!m_shared)
        return;
    m_application.capabilities().ask();
    m_shared->updates.check(false);
}

void WindowApplication::askForWhoCameIn() {
    // At the start the service may have been out of reach, or have answered somebody it did not know.
    if (m_application.auth().phase() == AuthStore::Phase::signedIn)
        detach(m_application.capabilities().refresh(), "asking for the capabilities");
}

QCoro::Task<> WindowApplication::open() {
    const QPointer self(this);
    m_opening = true;
    const auto opened = co_await m_application.open();
    if (!self)
        co_return;
    m_opening = false;
    m_openError = opened ? QString() : opened.error();
    if (opened) {
        m_shared = std::make_unique<SharedModels>(m_application);
        connect(&m_shared->updates, &UpdateChecker::alertChanged, this, &WindowApplication::ask);
        connect(&m_application.auth(), &AuthStore::phaseChanged, this, &WindowApplication::askForWhoCameIn);
        if (m_drawn || m_expectsShell)
            askForNews();
    }
    for (const auto &shown : m_windows) {
        if (opened)
            shown.scene->adopt(*m_shared);
        else
            shown.scene->setOpenError(m_openError);
    }
}

// Closing and leaving

void WindowApplication::quit(QSet<WindowScene *> asked) {
    for (const auto &shown : m_windows) {
        if (asked.contains(shown.scene.get()) || !shown.scene->losesIncognito())
            continue;
        asked.insert(shown.scene.get());
        bringUp(*shown.window);
        shown.scene->questions()->askToLeave(WindowQuestions::Leaving::Program, [this, asked] { quit(asked); });
        return;
    }
    m_macLifecycle.quit();
}

void WindowApplication::onCloseRequested(WindowScene *scene) {
    if (scene->losesIncognito())
        scene->questions()->askToLeave(WindowQuestions::Leaving::Window, [this, scene] { goOnClosing(scene); });
    else
        goOnClosing(scene);
}

void WindowApplication::goOnClosing(WindowScene *scene) {
    if (m_windows.size() > 1)
        scene->saveAndClose();
    else if (m_macLifecycle.mayCloseLastWindow())
        close(scene);
}

void WindowApplication::onReadyToClose(WindowScene *scene) {
    // While it was saved the others may have gone, and a program without a window could not be seen nor ended.
    if (m_windows.size() > 1)
        close(scene);
    else
        goOnClosing(scene);
}

void WindowApplication::close(WindowScene *scene) {
    const auto shown = std::ranges::find(m_windows, scene, [](const Shown &one) { return one.scene.get(); });
    if (shown == m_windows.end())
        return;
    scene->layout()->keep(*shown->window);
    shown->window->hide();
    // The window may be in the middle of its own closing.
    shown->window.release()->deleteLater();
    scene->disconnect(this);
    shown->scene.release()->deleteLater();
    m_windows.erase(shown);
    // A question must not go with the window that it stood in: nobody could answer it any more.
    ask();
}

QCoro::Task<> WindowApplication::leave() {
    const QPointer self(this);
    m_leaving = true;
    Q_EMIT leaving();
    for (const auto &shown : m_windows) {
        shown.scene->release();
        shown.scene->layout()->keep(*shown.window);
        shown.window->hide();
    }
    if (!m_windows.empty())
        m_firstPane.keep(m_windows.back().scene->stage() == WindowScene::Stage::Shell);
    // What hung for longer than a quit waits may hang for ever, and nobody sees any more that it does.
    const auto limit = m_quitting.late() ? std::optional(restForFiles) : std::nullopt;
    const bool settled = co_await m_application.close(limit);
    if (!self)
        co_return;
    m_gaveUp = !settled;
    Q_EMIT left();
    QCoreApplication::exit(0);
}

void WindowApplication::ask() {
    const bool question = m_quitting.state() == State::Warning || (m_shared && m_shared->updates.isAlertOpen());
    const Shown *asked = front();
    for (const auto &shown : m_windows)
        shown.scene->questions()->setHostsProgram(question && &shown == asked);
}

// To the front

const WindowApplication::Shown *WindowApplication::front() const {
    const auto active = std::ranges::find_if(m_windows, [](const Shown &shown) { return shown.window->isActive(); });
    if (active != m_windows.end())
        return &*active;
    return m_windows.empty() ? nullptr : &m_windows.back();
}

QQuickWindow *WindowApplication::window() const {
    return m_windows.empty() ? nullptr : m_windows.back().window.get();
}

WindowScene *WindowApplication::scene() const {
    return m_windows.empty() ? nullptr : m_windows.back().scene.get();
}

void WindowApplication::raise(const QString &activationToken) {
    const Shown *shown = front();
    if (!shown)
        return;
    // Where the desktop lets no program push itself forward, the token says that the person asked for it.
    if (!activationToken.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
    bringUp(*shown->window);
}

void WindowApplication::bringUp(QQuickWindow &window) {
    // As it was before: maximised, for one.
    if (const auto states = window.windowStates(); states.testFlag(Qt::WindowMinimized))
        window.setWindowStates(states & ~Qt::WindowMinimized);
    window.raise();
    window.requestActivate();
}

void WindowApplication::tellSession(QSessionManager &session) const {
    const QString launcher = QCoreApplication::applicationDirPath() + u"/lumenpair"_s;
    session.setRestartCommand(QStringList{launcher} + m_options.arguments());
}

void WindowApplication::openLink(const QString &link) {
    if (const Shown *shown = front())
        shown->scene->navigation()->openLink(link);
    else
        m_options.link = link;
}

void WindowApplication::takeOver(const SingleInstance::Handover &handover) {
    if (const auto link = DeepLink::in(handover.arguments))
        openLink(*link);
    if (const Shown *shown = front(); shown && handover.site.value_or(m_options.site) != m_options.site)
        shown->scene->setNotice(SingleInstance::otherSiteText());
    raise(handover.activationToken);
}

bool WindowApplication::eventFilter(QObject *watched, QEvent *event) {
    // On macOS a link comes as an event, at the start and later.
    if (watched == qGuiApp && event->type() == QEvent::FileOpen) {
        openLink(static_cast<QFileOpenEvent *>(event)->url().toString(QUrl::FullyEncoded));
        return true;
    }
    return pressesMenuKey(watched, event) || QObject::eventFilter(watched, event);
}

bool WindowApplication::pressesMenuKey(QObject *watched, QEvent *event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->key() != Qt::Key_F10 || key->modifiers() != Qt::ShiftModifier || !qobject_cast<QQuickWindow *>(watched))
        return false;
    QKeyEvent menu(event->type(), Qt::Key_Menu, Qt::NoModifier);
    QCoreApplication::sendEvent(watched, &menu);
    return true;
}

} // namespace lmp
