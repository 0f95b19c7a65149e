#include "terminal/ConversationCommands.h"

#include "conversation/ConversationSession.h"
#include "conversation/ConversationTexts.h"
#include "core/PlainLabel.h"
#include "terminal/SessionGate.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// One conversation a line; a title cannot make two of it.
QString row(const QString &id, const QString &title, const QString &mark = {}) {
    const QString flat = PlainLabel::line(title);
    return id + u'\t' + (flat.isEmpty() ? u"（无标题）"_s : flat) + mark + u'\n';
}

QString stateMark(std::optional<ConversationDeliveryState> state) {
    if (state == ConversationDeliveryState::failed)
        return u"（没有发出）"_s;
    if (state == ConversationDeliveryState::unknown || state == ConversationDeliveryState::pending)
        return u"（"_s + ConversationTexts::unknownMessage() + u"）"_s;
    return {};
}

/// Drafts first, as whoever lost the network looks for them.
/// @return whether there are any
bool showDrafts(Application *application, Console *console) {
    const auto drafts = application->drafts().list(application->account().userId());
    if (!drafts) {
        const bool nobody = drafts.error().kind == ConversationDraftCache::CacheError::Kind::missingAccount;
        console->error(nobody ? u"现在核实不了是谁，存在本机的草稿先不列出。"_s : drafts.error().reason);
        return false;
    }
    for (const auto &draft : drafts->entries)
        console->reply(row(draft.snapshot.id, draft.snapshot.title, u"（草稿，尚未同步）"_s));
    if (drafts->unreadable > 0)
        console->error(ConversationTexts::draftsKeptUnread(drafts->unreadable));
    return !drafts->entries.isEmpty();
}

} // namespace

QCoro::Task<ExitCode> ConversationCommands::list(Application *application, Console *console) {
    if (const auto refused = co_await SessionGate::pass(application, console))
        co_return *refused;
    const auto all = co_await ConversationService(application->api()).list();
    const bool local = showDrafts(application, console);
    if (!all) {
        console->error(ConversationTexts::recentUnreadable(all.error().reason));
        co_return all.error().status == 401 ? ExitCode::NotSignedIn : ExitCode::Failed;
    }
    for (const auto &summary : all->conversations)
        console->reply(row(summary.id, summary.title));
    if (all->conversations.isEmpty() && !local)
        console->note(u"还没有对话。"_s);
    co_return ExitCode::Submitted;
}

QCoro::Task<ExitCode> ConversationCommands::show(Application *application, Console *console, QString id) {
    if (const auto refused = co_await SessionGate::pass(application, console))
        co_return *refused;
    ConversationSession session(ConversationService(application->api()), application->drafts(), application->account(),
                                application->clock());
    const auto loaded = co_await session.load(id);
    if (!loaded) {
        console->error(loaded.error().reason);
        co_return loaded.error().status == 401 ? ExitCode::NotSignedIn : ExitCode::Failed;
    }
    const ConversationDTO conversation = *session.conversation();
    console->note(u"「"_s + PlainLabel::line(conversation.title) + u"」"_s);
    for (const auto &message : conversation.messages) {
        const bool mine = message.role == TalkRole::user;
        console->reply((mine ? u"你："_s : u"分身："_s) + message.text +
                       (mine ? stateMark(message.deliveryState) : QString()) + u'\n');
    }
    if (session.conflicted())
        console->note(u"这段对话在别处有更新的内容，这里显示的是本机的一份。"_s);
    co_return ExitCode::Submitted;
}

} // namespace lmp
