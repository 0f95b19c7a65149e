#include "screens/gallery/GalleryStage.h"

#include "app/Application.h"
#include "core/Detach.h"

#include <QQmlComponent>
#include <QQuickItem>

namespace lmp {

using namespace Qt::StringLiterals;

GalleryStage::GalleryStage(QQmlEngine &engine, QSize size)
    : m_engine(engine)
    , m_size(size) {}

GalleryStage::~GalleryStage() {
    m_steps.clear();
    m_window.reset();
    // The last that was made may refer to those before it.
    while (!m_kept.empty())
        m_kept.pop_back();
}

Application &GalleryStage::open(const std::optional<QString> &token) {
    auto &application = make<Application>(Application::Options{
        .site = m_service.site(), .profile = {}, .token = token, .viewport = u"gallery"_s, .withoutTrace = !token});
    const auto opened = std::make_shared<std::optional<bool>>();
    // A service that is named is found at once; the coroutine ends before it returns.
    detach(
        [](Application *opening, std::shared_ptr<std::optional<bool>> outcome) -> QCoro::Task<> {
            const auto found = co_await opening->open();
            *outcome = found.has_value();
        }(&application, opened),
        "opening the gallery's application");
    if (!opened->value_or(false))
        m_faults << u"the application did not open"_s;
    return application;
}

QObject *GalleryStage::create(const QString &type, const QVariantMap &properties) {
    QQmlComponent component(&m_engine, QUrl(u"qrc:/qt/qml/Lumenpair/"_s + type + u".qml"_s));
    QObject *object = component.createWithInitialProperties(properties);
    if (!object)
        m_faults << component.errorString().trimmed();
    m_root = object;
    return object;
}

void GalleryStage::show(const QString &type, const QVariantMap &properties) {
    m_window = std::make_unique<QQuickWindow>();
    m_window->resize(m_size);
    auto *item = qobject_cast<QQuickItem *>(create(type, properties));
    if (!item)
        return;
    item->setParent(m_window.get());
    item->setParentItem(m_window->contentItem());
    item->setSize(m_size);
    item->setFocus(true);
    m_window->show();
    m_window->requestActivate();
}

void GalleryStage::showWindow(const QString &type, const QVariantMap &properties) {
    auto *window = qobject_cast<QQuickWindow *>(create(type, properties));
    if (!window)
        return;
    m_window.reset(window);
    window->resize(m_size);
    window->show();
    window->requestActivate();
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

QQuickItem *GalleryStage::item(const QString &objectName) const {
    return m_root ? m_root->findChild<QQuickItem *>(objectName) : nullptr;
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
