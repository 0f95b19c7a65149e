// lumenpair-gallery [--gallery] DIR [--look NAME]... [SCENE...]: draws every screen and state into DIR, without a
// display. A scene is named whole or by its beginning; a look is light or dark with a scale from 85 to 160 %, as
// light-100 or dark-130.

#include "screens/gallery/AccountScenes.h"
#include "screens/gallery/CareScenes.h"
#include "screens/gallery/ChatScenes.h"
#include "screens/gallery/GalleryRun.h"
#include "screens/gallery/MemoryScenes.h"
#include "screens/gallery/ShellScenes.h"

#include <QDir>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QStyleHints>
#include <QTemporaryDir>

#include <cstdio>

namespace {

using namespace Qt::StringLiterals;

QList<lmp::GalleryScene> everyScene() {
    return lmp::AccountScenes::all() + lmp::ShellScenes::all() + lmp::ChatScenes::all() + lmp::MemoryScenes::all() +
           lmp::CareScenes::all();
}

int complain(const QString &text) {
    std::fprintf(stderr, "%s\n", text.toUtf8().constData());
    return 2;
}

/// Nothing of the person who draws it gets into the pictures, and nothing of the pictures into what they keep.
void standApart(const QString &home) {
    qputenv("HOME", home.toLocal8Bit());
    // No keychain answers, no browser opens, and no other program hears of us.
    for (const char *name : {"LMP_SITE", "DISPLAY", "WAYLAND_DISPLAY"})
        qunsetenv(name);
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("TZ", "Asia/Shanghai");
}

} // namespace

int main(int argc, char **argv) {
    QStringList words;
    for (int at = 1; at < argc; ++at)
        words << QString::fromLocal8Bit(argv[at]);
    // As it comes from the launcher: "--gallery DIR" or "--gallery=DIR".
    words.replaceInStrings(QRegularExpression(u"^--gallery(=|$)"_s), QString());
    words.removeAll(QString());
    QList<lmp::GalleryRun::Look> looks;
    for (auto at = words.indexOf(u"--look"_s); at >= 0; at = words.indexOf(u"--look"_s)) {
        const auto look = lmp::GalleryRun::lookOf(words.value(at + 1));
        if (!look)
            return complain(
                u"没有这样的外观：%1。可以是 light-100、dark-130 等，85 到 160。"_s.arg(words.value(at + 1)));
        looks << *look;
        words.remove(at, 2);
    }
    if (words.isEmpty())
        return complain(u"用法：lumenpair --gallery 文件夹 [场景…]"_s);
    const QString folder = QDir().absoluteFilePath(words.takeFirst());
    QList<lmp::GalleryScene> scenes;
    for (const auto &scene : everyScene()) {
        const auto isMeant = [&](const QString &word) {
            return scene.name.startsWith(word);
        };
        if (words.isEmpty() || std::ranges::any_of(words, isMeant))
            scenes << scene;
    }
    if (scenes.isEmpty())
        return complain(u"没有这样的场景。"_s);
    if (!QDir().mkpath(folder))
        return complain(u"建不了文件夹 "_s + folder);

    const QTemporaryDir home;
    standApart(home.path());
    int noArguments = 1;
    const QGuiApplication app(noArguments, argv);
    QGuiApplication::setApplicationName(u"lumenpair"_s);
    QGuiApplication::setApplicationVersion(QStringLiteral(LMP_VERSION));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::styleHints()->setCursorFlashTime(0);
    lmp::GalleryRun run(folder, scenes, looks.isEmpty() ? lmp::GalleryRun::everyLook() : looks);
    run.start();
    return QGuiApplication::exec();
}
