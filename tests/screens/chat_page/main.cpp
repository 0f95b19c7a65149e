#include "ChatStage.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

void qml_register_types_Lumenpair_Kit();
void qml_register_types_Lumenpair_Markdown();
void qml_register_types_Lumenpair_Memory();
void qml_register_types_Lumenpair_Chat();

/// What the test program gives the tests: the modules of the screens, and the stage they play on.
class Setup : public QObject {
    Q_OBJECT
public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine *engine) {
        static void (*const volatile modules[])() = {
            qml_register_types_Lumenpair_Kit, qml_register_types_Lumenpair_Markdown,
            qml_register_types_Lumenpair_Memory, qml_register_types_Lumenpair_Chat};
        for (const auto &module : modules)
            static_cast<void>(module);
        engine->addImportPath(QStringLiteral("qrc:/qt/qml"));
        engine->rootContext()->setContextProperty(QStringLiteral("stage"), &m_stage);
    }

    void cleanupTestCase() { m_stage.finish(); }

private:
    lmp::ChatStage m_stage;
};

QUICK_TEST_MAIN_WITH_SETUP(chat_page, Setup)

#include "main.moc"
