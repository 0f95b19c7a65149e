#pragma once

#include "app/Application.h"
#include "conversation/ChatWithTwinView.h"
#include "terminal/CommandLine.h"
#include "terminal/ExitCode.h"
#include "terminal/StandardInput.h"

#include <memory>

namespace lmp {

class ChatOutput;

/// `lumenpair chat`: one question, or a conversation.
///
/// UI thread; application, console and input outlive it. A turn that has begun is always brought to an end and saved,
/// also when nobody reads standard output any more.
class ChatCommand : public QObject {
    Q_OBJECT
public:
    ChatCommand(Application &application, Console &console, StandardInput &input, const CommandLine &line);
    ~ChatCommand() override;

    QCoro::Task<ExitCode> run();
    /// Ctrl-C: the first one stops the reply or leaves the prompt, the next one leaves.
    /// @param leave another signal that asks to go at once
    /// @return false when nothing is under way that would end by itself now
    bool interrupt(bool leave);

private:
    /// Of the last conversation; empty when there is none yet.
    struct ConversationId {
        QString text;
    };

    QCoro::Task<std::optional<QString>> question();
    QCoro::Task<Result<void>> openConversation();
    QCoro::Task<Result<ConversationId>> lastConversation();
    QCoro::Task<ExitCode> converse();
    QCoro::Task<ExitCode> turn(QString text);
    static ExitCode exitCode(const TurnOutcome &outcome);

    Application &m_application;
    Console &m_console;
    StandardInput &m_input;
    CommandLine m_line;
    ConversationSession m_session;
    ChatWithTwinView m_view;
    std::unique_ptr<ChatOutput> m_output;
    std::optional<Later<std::optional<TurnOutcome>>> m_turnEnded;
    std::optional<Later<std::optional<ConversationSession::Saved>>> m_saveEnded;
    bool m_interrupted = false;     ///< once already, with nothing said since
    bool m_promptCancelled = false; ///< the line that is waited for will not come
    bool m_leaving = false;
};

} // namespace lmp
