#pragma once

#include "platform/Settings.h"

#include <QLatin1StringView>

#include <functional>
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
    /// Begins with what every start comes by.
    /// @param engine, settings outlive it
    PreloadedPane(QQmlEngine &engine, Settings &settings);
    ~PreloadedPane();

    /// What windows are made of.
    QQmlComponent &window() { return *m_read.front(); }
    /// Calls `then`, not before this returns, once what windows are made of has been read or could not be.
    void whenWindowRead(std::function<void()> then);
    /// Goes on to the screen behind that. @param signedIn what is known already; without it the last run counts
    /// @return the guess: whether the start will come to somebody signed in
    bool guess(std::optional<bool> signedIn);
    /// Lets the reading go on where it waits for this thread, as it does at each plugin. Between long pieces of work.
    static void goOn();
    /// The run ends here: that is the guess of the next one.
    void keep(bool signedIn);

private:
    void read(QLatin1StringView screen);

    QQmlEngine &m_engine;
    Settings &m_settings;
    std::vector<std::unique_ptr<QQmlComponent>> m_read;
};

} // namespace lmp
