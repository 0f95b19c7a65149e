#include "screens/gallery/GalleryStage.h"

#include "screens/shell/WindowApplication.h"
#include "screens/shell/WindowScene.h"

#include <QInputMethodEvent>
#include <QQmlComponent>
#include <QQuickItem>

#include <ranges>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// The QML name of an item's type.
QString typeOf(const QObject &object) {
    return QString::fromLatin1(object.metaObject()->className()).section(u"_QML"_s, 0, 0);
}

/// Items only: what lies over a window (sheets, menus) is below its content too.
QQuickItem *findVisible(QQuickItem *below, const QString &type) {
    if (!below || !below->isVisible())
        return nullptr;
    if (typeOf(*below) == type)
        return below;
    const auto children = below->childItems();
    for (auto *child : children) {
        if (auto *found = findVisible(child, type))
            return found;
    }
    return nullptr;
}

/// What is drawn last is in front.
QQuickItem *findControl(QQuickItem *below, const QString &text) {
    if (!below || !below->isVisible())
        return nullptr;
    const auto children = below->childItems();
    for (auto *child : std::views::reverse(children)) {
        if (auto *found = findControl(child, text))
            return found;
    }
    const bool acts = below->metaObject()->indexOfSignal("clicked()") >= 0;
    return acts && below->isEnabled() && below->property("text").toString() == text ? below : nullptr;
}

} // namespace

GalleryStage::GalleryStage(QQmlEngine &engine, QSize size)
    : m_engine(engine)
    , m_size(size) {
    for (const auto &[variable, folder] : {std::pair("XDG_CONFIG_HOME", "config"), std::pair("XDG_DATA_HOME", "data"),
                                           std::pair("XDG_CACHE_HOME", "cache"), std::pair("XDG_STATE_HOME", "state"),
                                           std::pair("XDG_RUNTIME_DIR", "run")})
        qputenv(variable, m_home.filePath(QString::fromLatin1(folder)).toLocal8Bit());
    QDir(m_home.path()).mkdir(u"run"_s);
    QFile::setPermissions(m_home.filePath(u"run"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

GalleryStage::~GalleryStage() {
    m_steps.clear();
    m_window.reset();
    m_program.reset();
    // The last that was made may refer to those before it.
    while (!m_kept.empty())
        m_kept.pop_back();
}

void GalleryStage::run(const std::optional<QString> &token, const QString &link) {
    if (token)
        qputenv("LMP_TOKEN", token->toUtf8());
    else
        qunsetenv("LMP_TOKEN");
    m_program = std::make_unique<WindowApplication>(
        WindowOptions{.site = m_service.site(), .profile = {}, .link = link}, SystemClock().monotonic());
    m_program->start();
    until(u"the program has a window"_s, [this] { return m_program->window() != nullptr; });
    then([this] {
        m_program->window()->resize(m_size);
        m_program->window()->requestActivate();
    });
    until(u"the service is found"_s, [this] { return scene().session() || !scene().openError().isEmpty(); });
}

WindowScene &GalleryStage::scene() {
    return *m_program->scene();
}

void GalleryStage::show(const QString &type, const QVariantMap &properties) {
    QQmlComponent component(&m_engine, QUrl(u"qrc:/qt/qml/Lumenpair/"_s + type + u".qml"_s));
    std::unique_ptr<QObject> object(component.createWithInitialProperties(properties));
    auto *item = qobject_cast<QQuickItem *>(object.get());
    if (!item) {
        m_faults << component.errorString().trimmed();
        return;
    }
    m_window = std::make_unique<QQuickWindow>();
    m_window->resize(m_size);
    object.release()->setParent(m_window.get());
    item->setParentItem(m_window->contentItem());
    item->setSize(m_size);
    item->setFocus(true);
    m_window->show();
    m_window->requestActivate();
}

void GalleryStage::then(std::function<void()> act) {
    m_steps.push_back({.what = {}, .done = [act = std::move(act)] {
                           act();
                           return true;
                       }});
}

void GalleryStage::until(const QString &what, std::function<bool()> reached) {
    m_steps.push_back({.what = what, .done = std::move(reached)});
}

void GalleryStage::type(const QString &text) {
    until(u"a field with the keyboard"_s, [this] {
        const QQuickItem *taker = window() ? window()->activeFocusItem() : nullptr;
        return taker && taker->flags() & QQuickItem::ItemAcceptsInputMethod;
    });
    then([this, text] {
        QInputMethodEvent event;
        event.setCommitString(text);
        QCoreApplication::sendEvent(window()->activeFocusItem(), &event);
    });
}

void GalleryStage::press(const QString &text) {
    until(u"a control: "_s + text, [this, text] { return control(text) != nullptr; });
    then([this, text] {
        if (auto *found = control(text))
            QMetaObject::invokeMethod(found, "clicked");
    });
}

QQuickWindow *GalleryStage::window() const {
    return m_program ? m_program->window() : m_window.get();
}

QQmlEngine &GalleryStage::engine() {
    auto *engine = m_program && window() ? qmlEngine(window()) : nullptr;
    return engine ? *engine : m_engine;
}

QQuickItem *GalleryStage::visibleItem(const QString &type) const {
    return window() ? findVisible(window()->contentItem(), type) : nullptr;
}

QQuickItem *GalleryStage::control(const QString &text) const {
    return window() ? findControl(window()->contentItem(), text) : nullptr;
}

void GalleryStage::setLook(bool dark, qreal scale) {
    if (m_program) {
        m_program->appearance().setChoice(dark ? AppearanceModel::Choice::Dark : AppearanceModel::Choice::Light);
        m_program->appearance().setScale(scale);
    }
    QQmlComponent component(&engine());
    component.setData("import QtQml\nimport Lumenpair.Kit\nQtObject { property QtObject theme: Theme }", {});
    const std::unique_ptr<QObject> holder(component.create());
    auto *theme = holder ? holder->property("theme").value<QObject *>() : nullptr;
    if (!theme) {
        m_faults << u"there is no theme: "_s + component.errorString();
        return;
    }
    theme->setProperty("reducedMotion", true);
    theme->setProperty("dark", dark);
    theme->setProperty("scale", scale);
    if (m_window) {
        m_window->setColor(theme->property("window").value<QColor>());
    }
}

bool GalleryStage::advance() {
    while (!m_steps.empty()) {
        // A step may add others behind itself.
        const Step step = m_steps.front();
        if (!step.done())
            return false;
        m_steps.pop_front();
    }
    return true;
}

QString GalleryStage::waitingFor() const {
    return m_steps.empty() ? QString() : m_steps.front().what;
}

} // namespace lmp
