#pragma once

#include "core/Later.h"
#include "terminal/Console.h"
#include "terminal/LineReader.h"

#include <QCoroTask>
#include <QSocketNotifier>

#include <memory>
#include <optional>

namespace lmp {

/// What the person types or a pipe delivers, line by line or whole, read while the event loop runs.
///
/// UI thread, one reader at a time: whoever still waits when another begins gets none. On a terminal lines are edited
/// and secrets are not echoed; in a pipe prompts are left out.
class StandardInput : public QObject {
    Q_OBJECT
public:
    /// More than this is no message but an accident.
    static constexpr qsizetype maxBytes = 4 * 1024 * 1024;

    /// What was wrong with the last line.
    enum class Trouble {
        None,
        TooLong, ///< it is left out, and none is the answer though more may come
        NotText  ///< the answer has signs in place of what is no UTF-8
    };

    /// @param console outlives it, and makes room for what is written while a line is typed
    explicit StandardInput(Console &console);
    ~StandardInput() override;

    /// The next line without its end; none at the end of input, or after `cancel`.
    /// @param typed stands there already on a terminal, to be gone on with
    QCoro::Task<std::optional<QString>> line(QString prompt, QString typed = {});
    /// The same, without echo and without history.
    QCoro::Task<std::optional<QString>> secret(QString prompt);
    /// Everything up to the end of input; none when it is too long.
    QCoro::Task<std::optional<QString>> everything();

    /// Ends the wait under way, if any, without an answer; what was typed stays on the screen.
    /// @return what that was
    QString cancel();
    /// The same, and the line goes from the screen: something else needs its place.
    QString takeAway();
    /// What was typed on a terminal while nothing was asked, and would be taken for the next answer; on one line.
    QString takeTypedAhead();
    Trouble trouble() const { return m_trouble; }
    bool isWaiting() const { return m_waiting.has_value(); }

private:
    using Answer = Later<std::optional<QString>>;
    QCoro::Task<std::optional<QString>> wait();
    void onReadable();
    bool takeLine();
    bool takeAll();
    void answerWith(QByteArray bytes);
    void answer(std::optional<QString> text);

    Console &m_console;
    std::unique_ptr<LineReader> m_editor; ///< on a terminal only
    QSocketNotifier m_pipe;
    QByteArray m_buffer;
    bool m_ended = false;
    bool m_whole = false;
    bool m_skipping = false; ///< up to the end of a line that is too long
    Trouble m_trouble = Trouble::None;
    std::optional<Answer> m_waiting;
};

} // namespace lmp
