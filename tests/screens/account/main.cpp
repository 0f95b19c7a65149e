#include "AccountBench.h"

#include <QtQuickTest/quicktest.h>

/// Hands each engine of the test program the real models.
class Setup : public QObject {
    Q_OBJECT
public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine *engine) { lmp::AccountBench::provide(*engine); }
};

int main(int argc, char **argv) {
    qputenv("QT_LOGGING_RULES", "com.tolvey.quillet.*=false");
    Setup setup;
    return quick_test_main_with_setup(argc, argv, "account_screens", QUICK_TEST_SOURCE_DIR, &setup);
}

#include "main.moc"
