#pragma once

#include "platform/Settings.h"

#include <QUrl>

#include <memory>
#include <optional>
#include <vector>

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

    /// Where a screen of the shell is read from.
    static QUrl file(QLatin1StringView screen);
    /// Begins to read. @param signedIn what is known already; without it the last run counts
    void begin(QQmlEngine &engine, std::optional<bool> signedIn);
    /// Lets the reading go on where it waits for this thread, as it does at each plugin. Between long pieces of work.
    static void goOn();
    /// The run ends here: that is the guess of the next one.
    void keep(bool signedIn);

private:
    Settings &m_settings;
    std::vector<std::unique_ptr<QQmlComponent>> m_read;
};

} // namespace lmp
