#pragma once

#include "screens/shell/WindowApplication.h"
#include "screens/shell/WindowScene.h"

#include <QQuickItem>
#include <QQuickWindow>

namespace lmp {

/// The program with its window, used as a person uses it: by keys, by clicks, and by what is to be read on it.
class WindowDriver {
public:
    explicit WindowDriver(WindowOptions options);
    ~WindowDriver();

    /// A program that was left has told the event loop to end, and the next test needs it: lets it end now.
    static void endLoop();

    WindowApplication &program() { return *m_program; }
    WindowScene &scene() { return *m_program->scene(); }
    QQuickWindow &window() { return *m_program->window(); }

    /// Waits for a stage of the window.
    bool reaches(WindowScene::Stage stage);
    /// Passes by what a new person is shown, up to the shell.
    bool enterShell();

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    /// As an input method gives it.
    void type(const QString &text);
    /// Letters that are still being composed.
    void compose(const QString &text);
    /// Clicks what is called so.
    bool click(const QString &name);

    /// Waits until the question with this in its title takes answers: one that came unasked takes none in its first
    /// half second.
    bool listens(const QString &question);

    /// Waits until the button of this name has the keyboard.
    bool hasKeyboard(const QString &button);

    /// Whether a text that contains this can be read in the window, now or before long.
    bool shows(const QString &text);
    /// Whether none can be.
    bool hides(const QString &text);
    /// The visible item of this QML type whose name (text, title or label) is `name`; any for an empty one.
    QQuickItem *find(const QString &type, const QString &name = {});

    /// Ends as by a signal, and waits until the program would exit.
    bool quits();

private:
    /// Whether the keys of the window are there.
    bool hearsKeys();
    bool readable(const QString &text);
    QList<QQuickItem *> items() const;
    std::unique_ptr<WindowApplication> m_program;
    bool m_leaving = false; ///< and not gone yet
};

} // namespace lmp
