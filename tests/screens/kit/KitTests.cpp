#include "KitProbe.h"

#include <QQmlEngine>
#include <QtQuickTest>

void qml_register_types_Lumenpair_Kit();

namespace lmp {

/// Gives the tests the kit and the probe.
class KitTests : public QObject {
    Q_OBJECT

public Q_SLOTS:
    // A name that Qt Quick Test looks for.
    void qmlEngineAvailable(QQmlEngine *engine) {
        static void (*const volatile module)() = qml_register_types_Lumenpair_Kit;
        static_cast<void>(module);
        QAccessible::setActive(true);
        engine->addImportPath(QStringLiteral("qrc:/qt/qml"));
        qmlRegisterSingletonInstance("Lumenpair.KitTests", 1, 0, "Probe", &m_probe);
    }

private:
    KitProbe m_probe;
};

} // namespace lmp

int main(int argc, char **argv) {
    QTEST_SET_MAIN_SOURCE_PATH
    lmp::KitTests setup;
    return quick_test_main_with_setup(argc, argv, "kit_tests", QUICK_TEST_SOURCE_DIR, &setup);
}

#include "KitTests.moc"
