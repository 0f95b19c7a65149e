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

    explicit StandardInput(const Console &console);

    /// The next line without its end; none at the end of input, or after `cancel`.
    QCoro::Task<std::optional<QString>> line(QString prompt);
    /// The same, without echo and without history.
    QCoro::Task<std::optional<QString>> secret(QString prompt);
    /// Everything up to the end of input; none when it is too long.
    QCoro::Task<std::optional<QString>> everything();

    /// Ends the wait under way, if any, without an answer.
    void cancel();
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

    bool m_isTerminal;
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
