#include "terminal/DraftCommands.h"

#include "conversation/ConversationTexts.h"
#include "core/Json.h"
#include "core/PlainLabel.h"
#include "terminal/SessionGate.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

using Drafts = QList<ConversationDraftCache::Entry>;
using Inputs = QList<ConversationInputDraftStore::Entry>;

/// One record a line, for `--json`.
struct Line {
    QString kind; ///< "conversation" or "input"
    QString id, title, updatedAt;
    std::optional<ConversationDTO> conversation;
    std::optional<ConversationInput> input;
};
BOOST_DESCRIBE_STRUCT(Line, (), (kind, id, title, updatedAt, conversation, input))

struct Found {
    Drafts drafts;
    Inputs inputs;
    QStringList spoilt = {}; ///< files that are no drafts
    bool complete = true;    ///< everything could be read

    bool isEmpty() const { return drafts.isEmpty() && inputs.isEmpty(); }
    void only(const QString &id) {
        drafts.removeIf([&](const auto &draft) { return draft.snapshot.id != id; });
        inputs.removeIf([&](const auto &entry) { return ConversationInputDraftStore::originalId(entry.id) != id; });
    }
};

/// What this machine holds for whoever is signed in; what cannot be read is told.
std::optional<Found> find(Application *application, Console *console) {
    const auto user = application->account().current();
    if (!user) {
        console->error(u"现在核实不了是谁，存在本机的草稿先不列出。"_s);
        return std::nullopt;
    }
    Found found;
    const auto miss = [&](const QString &text) {
        console->error(text);
        found.complete = false;
    };
    if (auto drafts = application->drafts().list(user)) {
        found.drafts = std::move(drafts->entries);
        found.spoilt += drafts->spoilt;
        if (drafts->unreadable > 0)
            miss(ConversationTexts::draftsKeptUnread(drafts->unreadable));
    } else {
        miss(drafts.error().reason);
    }
    if (auto inputs = application->inputs().list(*user)) {
        found.inputs = std::move(inputs->entries);
        found.spoilt += inputs->spoilt;
        if (inputs->unreadable > 0)
            miss(ConversationTexts::inputsKeptUnread());
    } else {
        miss(ConversationTexts::inputUnreadable());
    }
    return found;
}

/// The files that are no drafts, without a word.
QStringList spoiltNow(Application *application) {
    const auto user = application->account().current();
    const auto drafts = application->drafts().list(user);
    const auto inputs = application->inputs().list(user.value_or(QString()));
    return (drafts ? drafts->spoilt : QStringList()) + (inputs ? inputs->spoilt : QStringList());
}

/// The beginning of a text on one line.
QString brief(const QString &text) {
    return PlainLabel::line(text, 41);
}

QString contents(const ConversationInput &input) {
    QString text = input.text;
    if (const auto count = input.parts.size())
        text += u"\n（附件 %1 个）"_s.arg(count);
    if (input.selection)
        text += u"\n（已选目标）"_s;
    return text + u'\n';
}

QString mark(const ConversationInputDraftStore::Entry &entry) {
    const bool copy = ConversationInputDraftStore::originalId(entry.id) != entry.id;
    return copy ? u"（未发送输入，另一个窗口的一份）"_s : u"（未发送输入）"_s;
}

void printLines(Console *console, const Found &found) {
    for (const auto &draft : found.drafts)
        console->line(Json::encode(Line{.kind = u"conversation"_s,
                                        .id = draft.snapshot.id,
                                        .title = draft.snapshot.title,
                                        .updatedAt = draft.updatedAt,
                                        .conversation = draft.snapshot,
                                        .input = {}}));
    for (const auto &entry : found.inputs)
        console->line(Json::encode(Line{.kind = u"input"_s,
                                        .id = ConversationInputDraftStore::originalId(entry.id),
                                        .title = entry.title,
                                        .updatedAt = entry.updatedAt,
                                        .conversation = {},
                                        .input = entry.input}));
}

void print(Console *console, const Found &found) {
    for (const auto &draft : found.drafts) {
        console->note(u"「"_s + PlainLabel::line(draft.snapshot.title) + u"」（对话草稿，尚未同步）"_s);
        for (const auto &message : draft.snapshot.messages)
            console->reply((message.role == TalkRole::user ? u"你："_s : u"分身："_s) + message.text + u'\n');
    }
    for (const auto &entry : found.inputs) {
        console->note(mark(entry));
        console->reply(contents(entry.input));
    }
}

/// @return what could not be discarded, a sentence each
QStringList remove(Application *application, const Found &found) {
    const auto user = application->account().current();
    QStringList failures;
    for (const auto &draft : found.drafts) {
        const auto removed = application->drafts().remove(user, draft.snapshot.id, draft.writeId);
        if (!removed)
            failures << removed.error().reason;
    }
    for (auto entry : found.inputs) {
        entry.input = {};
        const auto removed =
            application->inputs().save(user.value_or(QString()), entry, entry.writeId, application->clock().now());
        if (!removed)
            failures << ConversationInputDraftStore::describe(removed.error());
    }
    return failures;
}

QCoro::Task<bool> isSure(Console *console, StandardInput *input) {
    console->note(u"丢弃以后找不回来。要丢弃，请输入“丢弃”。"_s);
    const auto answer = co_await input->line(u"> "_s);
    const bool sure = answer && answer->trimmed() == u"丢弃"_s;
    if (!sure)
        console->note(u"没有丢弃，都还在。"_s);
    co_return sure;
}

} // namespace

QCoro::Task<ExitCode> DraftCommands::list(Application *application, Console *console, bool json) {
    if (const auto refused = co_await SessionGate::pass(application, console))
        co_return *refused;
    const auto found = find(application, console);
    if (!found)
        co_return ExitCode::Failed;
    if (json)
        printLines(console, *found);
    for (const auto &draft : json ? Drafts() : found->drafts)
        console->reply(draft.snapshot.id + u'\t' + brief(draft.snapshot.title) + u"（对话草稿，尚未同步）\n"_s);
    for (const auto &entry : json ? Inputs() : found->inputs)
        console->reply(ConversationInputDraftStore::originalId(entry.id) + u'\t' + brief(contents(entry.input)) +
                       mark(entry) + u'\n');
    for (const QString &path : found->spoilt)
        console->error(u"读不出来："_s + path);
    if (!found->spoilt.isEmpty())
        console->note(u"用 lumenpair drafts discard --unreadable 可以丢弃这些文件。"_s);
    if (found->isEmpty() && found->complete)
        console->note(u"本机没有草稿。"_s);
    co_return found->complete ? ExitCode::Submitted : ExitCode::Failed;
}

QCoro::Task<ExitCode> DraftCommands::show(Application *application, Console *console, QString id, bool json) {
    if (const auto refused = co_await SessionGate::pass(application, console))
        co_return *refused;
    auto found = find(application, console);
    if (!found)
        co_return ExitCode::Failed;
    found->only(id);
    if (found->isEmpty()) {
        console->error(u"本机没有这个编号的草稿。"_s);
        co_return ExitCode::Failed;
    }
    json ? printLines(console, *found) : print(console, *found);
    co_return ExitCode::Submitted;
}

QCoro::Task<ExitCode> DraftCommands::discard(Application *application, Console *console, StandardInput *input,
                                             QString id, bool sure) {
    if (const auto refused = co_await SessionGate::pass(application, console))
        co_return *refused;
    auto found = find(application, console);
    if (!found)
        co_return ExitCode::Failed;
    found->only(id);
    if (found->isEmpty()) {
        console->error(u"本机没有这个编号的草稿。"_s);
        co_return ExitCode::Failed;
    }
    if (!sure)
        print(console, *found);
    if (!sure && !co_await isSure(console, input))
        co_return ExitCode::Stopped;
    const QStringList failures = remove(application, *found);
    for (const QString &text : failures)
        console->error(text);
    if (failures.isEmpty())
        console->note(u"已丢弃。"_s);
    co_return failures.isEmpty() ? ExitCode::Submitted : ExitCode::Failed;
}

QCoro::Task<ExitCode> DraftCommands::discardUnreadable(Application *application, Console *console, StandardInput *input,
                                                       bool sure) {
    if (const auto refused = co_await SessionGate::pass(application, console))
        co_return *refused;
    const auto found = find(application, console);
    if (!found)
        co_return ExitCode::Failed;
    if (found->spoilt.isEmpty()) {
        console->note(u"没有读不出来的草稿文件。"_s);
        co_return ExitCode::Submitted;
    }
    for (const QString &path : found->spoilt)
        console->note(path);
    if (!sure && !co_await isSure(console, input))
        co_return ExitCode::Stopped;
    // While the person was asked a window may have put a draft into the place of one of them.
    const QStringList still = spoiltNow(application);
    bool all = true;
    for (const QString &path : found->spoilt) {
        if (!still.contains(path))
            continue;
        if (const auto removed = AtomicFile::remove(path); !removed) {
            console->error(u"没能丢弃："_s + path + u'（' + removed.error().reason + u'）');
            all = false;
        }
    }
    if (all)
        console->note(u"已丢弃。"_s);
    co_return all ? ExitCode::Submitted : ExitCode::Failed;
}

} // namespace lmp
