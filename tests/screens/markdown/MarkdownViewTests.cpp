#include "screens/markdown/MarkdownBlockModel.h"

#include <QQmlEngine>
#include <QtQuickTest>

void qml_register_types_Lumenpair_Kit();
void qml_register_types_Lumenpair_Markdown();

namespace lmp {

/// Gives the tests the modules they draw with.
class MarkdownViewTests : public QObject {
    Q_OBJECT

public Q_SLOTS:
    // A name that Qt Quick Test looks for.
    void qmlEngineAvailable(QQmlEngine *engine) {
        static void (*const volatile modules[])() = {qml_register_types_Lumenpair_Kit,
                                                     qml_register_types_Lumenpair_Markdown};
        for (const auto &module : modules)
            static_cast<void>(module);
        engine->addImportPath(QStringLiteral("qrc:/qt/qml"));
    }
};

} // namespace lmp

int main(int argc, char **argv) {
    QTEST_SET_MAIN_SOURCE_PATH
    lmp::MarkdownViewTests setup;
    return quick_test_main_with_setup(argc, argv, "markdown_view_tests", QUICK_TEST_SOURCE_DIR, &setup);
}

#include "MarkdownViewTests.moc"
