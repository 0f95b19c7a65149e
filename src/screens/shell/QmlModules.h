#pragma once

class QQmlEngine;

namespace lmp {

/// The QML modules that are built into the program.
///
/// Free of state. A static library's modules register themselves only where something refers to them; this does.
class QmlModules {
public:
    /// Makes the modules known to `engine`, which finds their files in the program itself. UI thread, before loading.
    static void provide(QQmlEngine &engine);
};

} // namespace lmp
