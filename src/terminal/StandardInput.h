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
/// UI thread, one reader at a time. On a terminal lines are edited and secrets are not echoed; in a pipe prompts are
/// left out.
class StandardInput : public QObject {
    Q_OBJECT
public:
    /// More than this is no message but an accident.
    static constexpr qsizetype maxBytes = 4 * 1024 * 1024;

    explicit StandardInput(const Console &console);

    /// The next line without its end; none at the end of input, or after `cancel`.
    QCoro::Task<std::optional<QString>> line(QString prompt);
    /// The same, without echo and without history.
    QCoro::Task<std::optional<QString>> secret(QString prompt);
    /// Everything up to the end of input; none when it is too long.
    QCoro::Task<std::optional<QString>> everything();

    /// Ends the wait under way, if any, without an answer.
    void cancel();
    bool isWaiting() const { return m_waiting.has_value(); }

private:
    using Answer = Later<std::optional<QString>>;
    QCoro::Task<std::optional<QString>> wait();
    void onReadable();
    bool takeLine();
    void answer(std::optional<QString> text);

    bool m_isTerminal;
    std::unique_ptr<LineReader> m_editor; ///< on a terminal only
    QSocketNotifier m_pipe;
    QByteArray m_buffer;
    bool m_ended = false;
    bool m_whole = false;
    std::optional<Answer> m_waiting;
};

} // namespace lmp
