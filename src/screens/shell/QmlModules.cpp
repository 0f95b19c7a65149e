#include "screens/shell/QmlModules.h"

#include <QQmlEngine>

void qml_register_types_Lumenpair_Kit();
void qml_register_types_Lumenpair_Markdown();
void qml_register_types_Lumenpair_Account();
void qml_register_types_Lumenpair_Chat();
void qml_register_types_Lumenpair_Memory();
void qml_register_types_Lumenpair_Shell();

namespace lmp {

void QmlModules::provide(QQmlEngine &engine) {
    // Referred to, not called: the engine calls each when its module is first imported.
    static void (*const volatile modules[])() = {
        qml_register_types_Lumenpair_Kit,  qml_register_types_Lumenpair_Markdown, qml_register_types_Lumenpair_Account,
        qml_register_types_Lumenpair_Chat, qml_register_types_Lumenpair_Memory,   qml_register_types_Lumenpair_Shell};
    for (const auto &module : modules)
        static_cast<void>(module);
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
}

} // namespace lmp
