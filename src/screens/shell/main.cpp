#include "screens/shell/QmlModules.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>

int main(int argc, char **argv) {
    QGuiApplication app(argc, argv);
    QQmlApplicationEngine engine;
    lmp::QmlModules::provide(engine);
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Lumenpair/Shell/Main.qml")));
    return engine.rootObjects().isEmpty() ? 1 : QGuiApplication::exec();
}
