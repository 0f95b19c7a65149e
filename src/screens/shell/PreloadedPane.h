#pragma once

#include "platform/Settings.h"

#include <memory>
#include <optional>

class QQmlComponent;
class QQmlEngine;

namespace lmp {

/// Reads the screen that a start will come to while its window is still being made and the keychain still being asked.
///
/// A guess: the screen that the last run ended at, signed in or out. A wrong one costs work of another thread and
/// nothing else. Owned by WindowApplication, UI thread.
class PreloadedPane {
public:
    /// @param settings outlives it
    explicit PreloadedPane(Settings &settings);
    ~PreloadedPane();

    /// Begins to read. @param signedIn what is known already; without it the last run counts
    void begin(QQmlEngine &engine, std::optional<bool> signedIn);
    /// The run ends here: that is the guess of the next one.
    void keep(bool signedIn);

private:
    Settings &m_settings;
    std::unique_ptr<QQmlComponent> m_first;
    std::unique_ptr<QQmlComponent> m_pane;
};

} // namespace lmp
