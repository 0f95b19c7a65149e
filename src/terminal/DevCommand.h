#pragma once

#include "dev/DevEngine.h"
#include "platform/SystemClock.h"
#include "terminal/CommandLine.h"
#include "terminal/DevControl.h"
#include "terminal/DevOutput.h"
#include "terminal/ExitCode.h"
#include "terminal/StandardInput.h"

#include <QSet>

namespace lmp {

/// `lumenpair dev`: one turn of a coding agent, a conversation with it, or the same for a program.
///
/// UI thread; console and input outlive it. However it ends, the agent is stopped; whoever ran it ends what children
/// are left with `DevProcessRegistry::quit`.
class DevCommand : public QObject {
public:
    DevCommand(Console &console, StandardInput &input, CommandLine::Dev line);
    ~DevCommand() override;

    QCoro::Task<ExitCode> run();
    /// Ctrl-C: the first one stops the turn, the next one leaves.
    /// @param leave another signal that asks to go at once
    void interrupt(bool leave);

private:
    /// The tool is there and signed in, as far as that can be known; else what is said and the way out.
    QCoro::Task<std::optional<ExitCode>> refusal();
    QCoro::Task<std::optional<QString>> question();
    QCoro::Task<std::optional<ExitCode>> start();
    QCoro::Task<ExitCode> talk(QString text);
    QCoro::Task<> converse();
    QCoro::Task<> leave();

    // What the agent says.
    QCoro::Task<> follow(Channel<DevEvent> events);
    QCoro::Task<> followWithdrawn(Channel<QString> ids);
    void onWithdrawn(const QString &requestId);
    void onEvent(const DevEvent &event);
    void onQuestion(const DevPermissionRequest &request);
    void endTurn(ExitCode outcome);
    void endStream();

    // What is asked of the user.
    QCoro::Task<> ask();
    QCoro::Task<std::optional<DevPermissionDecision>> decision();
    void respond(const QString &requestId, DevPermissionDecision decision);
    QCoro::Task<> answer(QString requestId, DevPermissionDecision decision);
    void dropQuestions();
    void denyQuestions(const QString &reason);
    void cancelPrompt();
    /// Something typed that was no answer. Whoever was writing when the question came may not have seen it.
    void keep(const QString &typed);

    // What a program says.
    QCoro::Task<> listen();
    void obey(const DevControl &control);
    void obeyResponse(const DevControl::Respond &response);
    void endInput();

    void submit(const QString &text);
    QCoro::Task<> send(QString text);
    static QCoro::Task<> dropped(QCoro::Task<DevEngine::Done> task);
    /// Waits for `isSo`, which is looked at whenever something has happened.
    QCoro::Task<> until(std::function<bool()> isSo);
    void changed();
    bool isOver() const { return m_leaving || m_ended || m_stopped || m_finishing; }
    bool isOnce() const { return m_once; }

    Console &m_console;
    StandardInput &m_input;
    CommandLine::Dev m_line;
    SystemClock m_clock;
    DevOutput m_output;
    DevEngine::Handle m_engine;
    std::optional<Later<bool>> m_change;
    Later<bool> m_followed; ///< the stream has been read to its end
    Later<bool> m_listened; ///< nothing is read from a program any more
    QList<DevPermissionRequest> m_questions;
    QString m_typed;           ///< of what the user wants to say next
    QSet<QString> m_withdrawn; ///< questions that were taken away before they came here

    int m_turns = 0;                          ///< asked for and not ended; words on their way count as one each
    ExitCode m_outcome = ExitCode::Submitted; ///< of the last turn
    bool m_once = false;                      ///< one turn only
    bool m_failed = false;                    ///< something in this turn
    bool m_turnInterrupted = false;           ///< this turn
    bool m_following = false;
    bool m_listening = false;
    bool m_asking = false;
    bool m_interrupted = false;     ///< once already, with nothing said since
    bool m_promptCancelled = false; ///< the line that is waited for will not come
    bool m_inputEnded = false;
    bool m_leaving = false;
    bool m_ended = false;     ///< the agent, by itself
    bool m_stopped = false;   ///< by a program's command, or since nobody reads what is said
    bool m_finishing = false; ///< nothing new is begun
};

} // namespace lmp
