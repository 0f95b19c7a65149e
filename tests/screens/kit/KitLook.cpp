#include <QGuiApplication>
#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTimer>

void qml_register_types_Lumenpair_Kit();

/// Draws a page of the kit to a PNG without a display, so that a person can look at it.
int main(int argc, char **argv) {
    using namespace Qt::StringLiterals;
    const QGuiApplication app(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() < 5) {
        qWarning("kit_look PAGE PNG light|dark SCALE [WIDTH HEIGHT]");
        return 2;
    }
    static void (*const volatile module)() = qml_register_types_Lumenpair_Kit;
    static_cast<void>(module);
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);

    QQuickView view;
    view.engine()->addImportPath(u"qrc:/qt/qml"_s);
    QQmlComponent theme(view.engine());
    theme.setData("import QtQuick\nimport Lumenpair.Kit\n"
                  "QtObject { function look(dark, scale) { Theme.dark = dark; Theme.scale = scale; } }",
                  QUrl(u"qrc:/look.qml"_s));
    const std::unique_ptr<QObject> look(theme.create());
    if (!look || !QMetaObject::invokeMethod(look.get(), "look", Q_ARG(QVariant, arguments.at(3) == u"dark"),
                                            Q_ARG(QVariant, arguments.at(4).toDouble())))
        return 1;
    if (arguments.size() > 6) {
        view.setResizeMode(QQuickView::SizeRootObjectToView);
        view.resize(arguments.at(5).toInt(), arguments.at(6).toInt());
    }
    view.setSource(QUrl::fromLocalFile(arguments.at(1)));
    if (!view.rootObject())
        return 1;
    view.show();
    bool saved = false;
    QTimer::singleShot(800, &view, [&] {
        saved = view.grabWindow().save(arguments.at(2));
        QCoreApplication::quit();
    });
    QGuiApplication::exec();
    return saved ? 0 : 1;
}
