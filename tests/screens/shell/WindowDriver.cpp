#include "WindowDriver.h"

#include "support/Await.h"

#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QTest>

#include <gtest/gtest.h>

#include <csignal>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

QString nameOf(const QQuickItem *item) {
    for (const char *property : {"text", "title", "label"}) {
        const QString name = item->property(property).toString();
        if (!name.isEmpty())
            return name;
    }
    return {};
}

void collect(QQuickItem *from, QList<QQuickItem *> &into) {
    if (!from->isVisible() || from->opacity() == 0)
        return;
    into << from;
    for (QQuickItem *child : from->childItems())
        collect(child, into);
}

} // namespace

WindowDriver::WindowDriver(WindowOptions options)
    : m_program(std::make_unique<WindowApplication>(std::move(options), SystemClock().monotonic())) {
    QObject::connect(m_program.get(), &WindowApplication::leaving, m_program.get(), [this] { m_leaving = true; });
    QObject::connect(m_program.get(), &WindowApplication::left, m_program.get(), [this] { m_leaving = false; });
    m_program->start();
    if (!eventually([this] { return m_program->window(); }))
        throw std::runtime_error("no window");
    window().requestActivate();
}

WindowDriver::~WindowDriver() {
    // As the program itself, which does not end before that.
    EXPECT_TRUE(eventually([this] { return !m_leaving; }));
    m_program.reset();
    settle();
    endLoop();
}

void WindowDriver::endLoop() {
    QMetaObject::invokeMethod(qApp, [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
    QCoreApplication::exec();
}

bool WindowDriver::reaches(WindowScene::Stage stage) {
    return eventually([&] { return scene().stage() == stage; });
}

bool WindowDriver::enterShell() {
    return eventually([&] {
        if (RootView *root = scene().rootView()) {
            root->finishMigrationNotice();
            root->finishOnboarding();
            root->finishHandleSetup();
        }
        return scene().stage() == WindowScene::Stage::Shell && scene().chat()->isOpen() && hearsKeys() &&
               (find(u"ChatPage"_s) || find(u"UnavailablePage"_s));
    });
}

bool WindowDriver::hearsKeys() {
    // They are made piece by piece after the first frame, and what is not whole yet is in the window already.
    constexpr int ready = 1; // QQuickLoader::Ready, whose header is not public
    const QQuickItem *extras = find(u"WindowExtras"_s);
    return extras && extras->parentItem()->property("status").toInt() == ready;
}

void WindowDriver::key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(&window(), key, modifiers);
}

void WindowDriver::type(const QString &text) {
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(QGuiApplication::focusObject(), &event);
}

void WindowDriver::compose(const QString &text) {
    QInputMethodEvent event(text, {});
    QCoreApplication::sendEvent(QGuiApplication::focusObject(), &event);
}

bool WindowDriver::click(const QString &name) {
    QQuickItem *found = nullptr;
    const auto isThere = [&] {
        const auto all = items();
        // The last is the one on top.
        const auto it = std::find_if(all.rbegin(), all.rend(), [&](const QQuickItem *item) {
            return item->isEnabled() && item->inherits("QQuickAbstractButton") && nameOf(item) == name;
        });
        found = it == all.rend() ? nullptr : *it;
        return found != nullptr;
    };
    if (!eventually(isThere))
        return false;
    // A popup moves to its place while it opens, and what was found may be made anew meanwhile.
    settle();
    if (!eventually(isThere))
        return false;
    QTest::mouseClick(&window(), Qt::LeftButton, {},
                      found->mapToScene({found->width() / 2, found->height() / 2}).toPoint());
    return true;
}

bool WindowDriver::listens(const QString &question) {
    return eventually([&] {
        // What a popup draws belongs to it.
        return std::ranges::any_of(items(), [&](const QQuickItem *item) {
            const QObject *popup = item->parent();
            return popup && popup->property("title").toString().contains(question) &&
                   popup->property("listens").toBool();
        });
    });
}

bool WindowDriver::hasKeyboard(const QString &button) {
    return eventually([&] {
        const QQuickItem *item = find(u"LMPButton"_s, button);
        return item && item->hasActiveFocus();
    });
}

bool WindowDriver::shows(const QString &text) {
    return eventually([&] { return readable(text); });
}

bool WindowDriver::hides(const QString &text) {
    return eventually([&] { return !readable(text); });
}

bool WindowDriver::readable(const QString &text) {
    const auto all = items();
    return std::ranges::any_of(all, [&](const QQuickItem *item) {
        return item->inherits("QQuickText") && item->property("text").toString().contains(text);
    });
}

QQuickItem *WindowDriver::find(const QString &type, const QString &name) {
    for (QQuickItem *item : items()) {
        if (QString::fromLatin1(item->metaObject()->className()).startsWith(type + u"_QML"_s) &&
            (name.isEmpty() || nameOf(item) == name))
            return item;
    }
    return nullptr;
}

bool WindowDriver::quits() {
    bool leaving = false;
    QObject::connect(m_program.get(), &WindowApplication::leaving, m_program.get(), [&] { leaving = true; });
    ::raise(SIGTERM);
    return eventually([&] { return leaving; });
}

QList<QQuickItem *> WindowDriver::items() const {
    QList<QQuickItem *> all;
    collect(m_program->window()->contentItem(), all);
    return all;
}

} // namespace lmp
