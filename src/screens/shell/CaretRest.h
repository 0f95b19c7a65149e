#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>

namespace lmp {

/// Lets the caret stand still where nobody has typed or clicked for a while: a window that is only open then has
/// nothing to draw, and the machine may sleep. The next key or click, or a field that gets the keyboard, has it blink
/// again, as the desktop wishes.
///
/// One for the program, owned by the window's application; UI thread.
class CaretRest : public QObject {
public:
    /// @param after how long nothing has been pressed
    explicit CaretRest(std::chrono::milliseconds after = std::chrono::seconds(5));
    /// Leaves the caret to the desktop again.
    ~CaretRest() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static void flashEvery(int ms);

    QTimer m_quiet;
};

} // namespace lmp
