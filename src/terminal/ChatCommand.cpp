#include "terminal/ChatCommand.h"

#include "conversation/ConversationTexts.h"
#include "terminal/ChatOutput.h"
#include "terminal/SessionGate.h"

namespace lmp {

using namespace Qt::StringLiterals;

ChatCommand::ChatCommand(Application &application, Console &console, StandardInput &input, const CommandLine &line)
    : m_application(application)
    , m_console(console)
    , m_input(input)
    , m_line(line)
    , m_session(ConversationService(application.api()), application.drafts(), application.account(),
                application.clock())
    , m_view(m_session, application.safety(), application.api(), application.events(), application.recorder())
    , m_output(std::make_unique<ChatOutput>(console, m_view, application.safety(), line.jsonl)) {
    m_view.surface = u"terminal"_s;
    m_view.cheaperMode = line.cheaper;
    const auto ended = [this](const TurnOutcome &outcome) {
        if (m_turnEnded)
            m_turnEnded->resolve(outcome);
    };
    connect(&m_view, &ChatWithTwinView::turnCompleted, this, ended);
    connect(&m_view, &ChatWithTwinView::turnFailed, this, ended);
    connect(&m_view, &ChatWithTwinView::turnAbandoned, this, [this] {
        if (m_turnEnded)
            m_turnEnded->resolve(std::nullopt);
    });
    // A stream that says nothing would not notice that its sign-in has ended.
    connect(&application.auth(), &AuthStore::generationChanged, &m_view, &ChatWithTwinView::recheck);
    connect(&m_session, &ConversationSession::saveEnded, this, [this](const ConversationSession::Saved &saved) {
        if (m_saveEnded)
            m_saveEnded->resolve(saved);
    });
}

ChatCommand::~ChatCommand() = default;

QCoro::Task<ExitCode> ChatCommand::run() {
    const bool once = !m_line.text.isEmpty() || !m_console.inputIsTerminal();
    QString text;
    if (once) {
        const auto asked = co_await question();
        if (!asked)
            co_return m_leaving ? ExitCode::Stopped : ExitCode::Usage;
        text = *asked;
    }
    if (const auto refused = co_await SessionGate::pass(&m_application, &m_console))
        co_return *refused;
    const auto opened = co_await openConversation();
    if (!opened) {
        m_console.error(opened.error().reason);
        if (m_leaving)
            co_return ExitCode::Stopped;
        co_return opened.error().status == 401 ? ExitCode::NotSignedIn : ExitCode::Failed;
    }
    if (m_leaving)
        co_return ExitCode::Stopped;
    co_return once ? co_await turn(text) : co_await converse();
}

QCoro::Task<std::optional<QString>> ChatCommand::question() {
    if (!m_line.text.isEmpty() && !m_line.text.join(u' ').trimmed().isEmpty())
        co_return m_line.text.join(u' ');
    std::optional<QString> text;
    if (m_line.text.isEmpty())
        text = co_await m_input.everything();
    while (text && (text->endsWith(u'\n') || text->endsWith(u'\r')))
        text->chop(1);
    if (text && !text->trimmed().isEmpty())
        co_return text;
    if (!m_leaving)
        m_console.error(text || !m_line.text.isEmpty() ? u"没有要说的话。"_s : u"输入太长了，没有发出。"_s);
    co_return std::nullopt;
}

QCoro::Task<Result<void>> ChatCommand::openConversation() {
    if (m_line.incognito)
        m_console.note(ConversationTexts::incognitoBanner());
    QString id = m_line.conversationId;
    if (m_line.continueLast) {
        const auto last = co_await lastConversation();
        if (!last)
            co_return std::unexpected(last.error());
        id = last->text;
    }
    if (id.isEmpty()) {
        m_session.begin({}, m_line.incognito);
        co_return {};
    }
    const auto loaded = co_await m_session.load(id);
    if (!loaded)
        co_return std::unexpected(loaded.error());
    const auto *conversation = m_session.conversation();
    m_console.note(
        u"接着「%1」（%2 条消息）"_s.arg(conversation->title, QString::number(conversation->messages.size())));
    if (m_session.conflicted())
        m_console.note(u"这段对话在别处有更新的内容，这里的改动先只存在本机。"_s);
    co_return {};
}

QCoro::Task<Result<ChatCommand::ConversationId>> ChatCommand::lastConversation() {
    const auto all = co_await ConversationService(m_application.api()).list();
    if (!all)
        co_return std::unexpected(all.error());
    if (all->conversations.isEmpty()) {
        m_console.note(u"还没有对话，开始新的一段。"_s);
        co_return ConversationId();
    }
    co_return ConversationId{all->conversations.front().id};
}

QCoro::Task<ExitCode> ChatCommand::converse() {
    m_console.note(u"回车发送 · Ctrl-C 停下回答 · Ctrl-D 离开"_s);
    while (!m_leaving) {
        const auto text = co_await m_input.line(u"你："_s);
        if (m_leaving)
            break;
        // The prompt was taken away; the end of input is another matter, whatever came before it.
        if (!text && std::exchange(m_promptCancelled, false))
            continue;
        if (!text)
            co_return ExitCode::Submitted;
        m_interrupted = false;
        if (!text->trimmed().isEmpty())
            co_await turn(*text);
    }
    co_return ExitCode::Stopped;
}

QCoro::Task<ExitCode> ChatCommand::turn(QString text) {
    m_turnEnded.emplace();
    m_saveEnded.emplace();
    const auto sent = m_view.send(text);
    if (!sent) {
        m_turnEnded.reset();
        m_saveEnded.reset();
        m_console.error(sent.error());
        co_return ExitCode::Failed;
    }
    const auto ended = *m_turnEnded;
    const auto outcome = co_await ended;
    m_turnEnded.reset();
    if (!outcome) {
        m_saveEnded.reset();
        co_return ExitCode::Unknown;
    }
    // An interruption while it is being saved leaves the rest to the local copy.
    const auto saving = *m_saveEnded;
    const auto saved = co_await saving;
    m_saveEnded.reset();
    if (saved && saved->text)
        m_console.note(*saved->text);
    co_return exitCode(*outcome);
}

bool ChatCommand::interrupt(bool leave) {
    const bool again = std::exchange(m_interrupted, true);
    const bool once = !m_line.text.isEmpty() || !m_console.inputIsTerminal();
    m_leaving = m_leaving || leave || again || once;
    if (m_view.sending()) {
        m_view.stop();
        return true;
    }
    if (m_saveEnded && !m_saveEnded->isResolved()) {
        // What the service has not confirmed is in the local copy.
        if (again || leave)
            m_saveEnded->resolve(std::nullopt);
        return true;
    }
    if (!m_input.isWaiting())
        return false;
    m_promptCancelled = true;
    m_input.cancel();
    if (!m_leaving)
        m_console.note(u"再按一次 Ctrl-C 离开。"_s);
    return true;
}

ExitCode ChatCommand::exitCode(const TurnOutcome &outcome) {
    if (outcome.stopped)
        return ExitCode::Stopped;
    switch (outcome.state) {
    case ConversationDeliveryState::submitted:
        return ExitCode::Submitted;
    case ConversationDeliveryState::failed:
        return ExitCode::Failed;
    default:
        return ExitCode::Unknown;
    }
}

} // namespace lmp
