#include "terminal/MemoryCommands.h"

#include "core/Json.h"
#include "core/TextFile.h"
#include "identity/MemoryImport.h"
#include "identity/MemorySearch.h"
#include "identity/MemoryTexts.h"
#include "identity/TruthStatus.h"
#include "terminal/SessionGate.h"

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;
using What = CommandLine::Memory::What;

namespace {

ExitCode failed(Console *console, const APIError &error) {
    console->error(error.reason);
    return error.status == 401 ? ExitCode::NotSignedIn : ExitCode::Failed;
}

/// Of something that was to be done: it may have been, unless the service has said no.
ExitCode notDone(Console *console, const APIError &error) {
    if (error.status >= 400 && error.status < 500 && error.status != 408)
        return failed(console, error);
    console->error(error.reason);
    console->error(u"没有收到确认，不知道做没做成。请先核对记忆，再决定要不要再做一次。"_s);
    return ExitCode::Unknown;
}

/// One a line; a wording cannot make two of it.
QString row(const QString &id, const QString &content, const QStringList &marks) {
    QString text = id + u'\t' + content.simplified();
    if (!marks.isEmpty())
        text += u"（"_s + marks.join(u"，"_s) + u"）"_s;
    return text + u'\n';
}

template <class Record>
void line(Console *console, const Record &record) {
    console->line(Json::encode(record));
}

void showItems(Console *console, const MemoryBundle &ledger, const CommandLine::Memory &command) {
    QSet<QString> replaced;
    for (const auto &item : ledger.items) {
        if (item.supersedes)
            replaced.insert(*item.supersedes);
    }
    const auto words = MemorySearch::words(command.text);
    qsizetype shown = 0;
    for (const auto &item : ledger.items) {
        if (!MemorySearch::matches(MemorySearch::folded(item), words))
            continue;
        ++shown;
        if (command.jsonl) {
            line(console, item);
            continue;
        }
        QStringList marks{TruthStatus(item.truth).label()};
        if (item.frozen.value_or(false))
            marks << u"已冻结"_s;
        if (replaced.contains(item.id))
            marks << MemoryTexts::superseded();
        if (item.supersedes)
            marks << MemoryTexts::supersedes();
        console->reply(row(item.id, item.content, marks));
    }
    if (shown == 0 && !command.jsonl)
        console->note(ledger.items.isEmpty() ? MemoryTexts::emptyTitle() + u"。"_s
                                             : MemoryTexts::noMatchTitle() + u"。"_s);
    if (!ledger.candidates.isEmpty() && !command.jsonl && words.isEmpty())
        console->note(u"还有 %1 条等你确认：lumenpair memory candidates"_s.arg(ledger.candidates.size()));
}

void showCandidates(Console *console, const QList<MemoryCandidateDTO> &candidates, bool jsonl) {
    for (const auto &candidate : candidates) {
        if (jsonl)
            line(console, candidate);
        else
            console->reply(row(candidate.id, candidate.content, {candidate.why}));
    }
    if (candidates.isEmpty() && !jsonl)
        console->note(u"没有等你确认的记忆。"_s);
}

void showChapters(Console *console, const QList<ChapterDTO> &chapters, bool jsonl) {
    for (const auto &chapter : chapters) {
        if (jsonl)
            line(console, chapter);
        else
            console->reply(row(chapter.id, u"第 %1 章 "_s.arg(chapter.n) + chapter.title + u"："_s + chapter.story,
                               chapter.pending.value_or(false) ? QStringList{u"等你决定"_s} : QStringList()));
    }
    if (chapters.isEmpty() && !jsonl)
        console->note(u"还没有章节。"_s);
}

} // namespace

QCoro::Task<ExitCode> MemoryCommands::run(Application *application, Console *console, StandardInput *input,
                                          CommandLine::Memory command) {
    if (const auto refused = co_await SessionGate::pass(application, console))
        co_return *refused;
    switch (command.what) {
    case What::List:
    case What::Candidates:
    case What::Chapters:
        co_return co_await list(application, console, command);
    case What::Confirm:
    case What::Dismiss:
    case What::Freeze:
    case What::Unfreeze:
    case What::Accept:
    case What::Reject:
        co_return co_await change(application, console, command);
    case What::Correct:
        co_return co_await correct(application, console, command);
    case What::Revert:
        co_return co_await revert(application, console, command);
    case What::Forget:
        co_return co_await forget(application, console, command);
    case What::Restore:
        co_return co_await restore(application, console, input, command);
    case What::History:
        co_return co_await history(application, console, command);
    case What::Import:
        co_return co_await import(application, console, input, command);
    }
    Q_UNREACHABLE();
}

QCoro::Task<ExitCode> MemoryCommands::list(Application *application, Console *console, Command command) {
    const auto ledger = co_await MemoryService(application->api()).load();
    if (!ledger) {
        console->error(MemoryTexts::loadFailed());
        co_return failed(console, ledger.error());
    }
    if (command.what == What::Candidates)
        showCandidates(console, ledger->candidates, command.jsonl);
    else if (command.what == What::Chapters)
        showChapters(console, ledger->chapters, command.jsonl);
    else
        showItems(console, *ledger, command);
    co_return ExitCode::Submitted;
}

QCoro::Task<ExitCode> MemoryCommands::change(Application *application, Console *console, Command command) {
    const MemoryService service(application->api());
    if (command.what == What::Confirm) {
        const auto answer = co_await service.confirm(command.id);
        if (!answer)
            co_return notDone(console, answer.error());
        console->note(answer->supersededContent ? MemoryTexts::confirmedInPlaceOf(*answer->supersededContent)
                                                : MemoryTexts::candidateConfirmed());
        if (answer->item && command.jsonl)
            line(console, *answer->item);
        co_return ExitCode::Submitted;
    }
    const bool accept = command.what == What::Accept;
    const bool chapter = accept || command.what == What::Reject;
    auto task = chapter                         ? service.resolveChapter(command.id, accept ? u"accept"_s : u"reject"_s)
                : command.what == What::Dismiss ? service.dismiss(command.id)
                                                : service.freeze(command.id, command.what == What::Freeze);
    const auto answer = co_await task;
    if (!answer)
        co_return notDone(console, answer.error());
    console->note(command.what == What::Dismiss    ? u"已丢掉。"_s
                  : command.what == What::Freeze   ? u"已冻结。"_s
                  : command.what == What::Unfreeze ? u"已解冻。"_s
                  : accept                         ? u"收下了这一章。"_s
                                                   : u"去掉了这一章。"_s);
    co_return ExitCode::Submitted;
}

QCoro::Task<ExitCode> MemoryCommands::correct(Application *application, Console *console, Command command) {
    const MemoryService service(application->api());
    const auto history = co_await service.history(command.id);
    if (!history) {
        console->error(MemoryTexts::historyUnreadable(history.error().reason));
        co_return history.error().status == 401 ? ExitCode::NotSignedIn : ExitCode::Failed;
    }
    if (!history->revision || history->revision->isEmpty()) {
        console->error(MemoryTexts::noRevision());
        co_return ExitCode::Failed;
    }
    const auto outcome = co_await service.correct(command.id, command.text, *history->revision);
    if (const auto *done = std::get_if<MemoryCorrectionOutcome::done>(&outcome.value)) {
        console->note(MemoryTexts::correctionSavedTitle() + u"。"_s + MemoryTexts::correctionSavedText());
        console->note(u"之前的说法："_s + done->previous);
        if (done->revision.isEmpty())
            console->error(MemoryTexts::revisionNotConfirmed());
        co_return ExitCode::Submitted;
    }
    if (std::holds_alternative<MemoryCorrectionOutcome::conflict>(outcome.value)) {
        const auto now = co_await service.history(command.id);
        console->error(MemoryTexts::correctionConflict(now ? now->current : QString()));
        co_return ExitCode::Failed;
    }
    console->error(MemoryTexts::correctionUnknown());
    co_return ExitCode::Unknown;
}

QCoro::Task<ExitCode> MemoryCommands::revert(Application *application, Console *console, Command command) {
    const MemoryService service(application->api());
    const auto history = co_await service.history(command.id);
    if (!history) {
        console->error(MemoryTexts::historyUnreadable(history.error().reason));
        co_return history.error().status == 401 ? ExitCode::NotSignedIn : ExitCode::Failed;
    }
    if (!history->revision || history->revision->isEmpty()) {
        console->error(MemoryTexts::noRevision());
        co_return ExitCode::Failed;
    }
    const auto outcome = co_await service.revert(command.id, *history->revision);
    if (const auto *done = std::get_if<MemoryRevertOutcome::done>(&outcome.value)) {
        console->note(MemoryTexts::reverted());
        console->reply(done->content + u'\n');
        co_return ExitCode::Submitted;
    }
    if (const auto *unchanged = std::get_if<MemoryRevertOutcome::unchanged>(&outcome.value)) {
        console->note(unchanged->message);
        co_return ExitCode::Submitted;
    }
    const auto *unknown = std::get_if<MemoryRevertOutcome::failed>(&outcome.value);
    console->error(unknown ? unknown->message : MemoryTexts::revertConflict());
    co_return unknown ? ExitCode::Unknown : ExitCode::Failed;
}

QCoro::Task<ExitCode> MemoryCommands::forget(Application *application, Console *console, Command command) {
    const MemoryService service(application->api());
    // What an undo needs is at hand before anything goes, since the answer may get lost. It is the person's to keep: on
    // this machine nothing of it stays behind.
    const auto ledger = co_await service.load();
    if (!ledger) {
        console->error(MemoryTexts::loadFailed());
        co_return failed(console, ledger.error());
    }
    const auto known = std::ranges::find(ledger->items, command.id, &MemoryItemDTO::id);
    auto item = known == ledger->items.end() ? std::nullopt : std::optional(*known);
    const auto answer = co_await service.forget(command.id);
    const auto code = answer ? ExitCode::Submitted : notDone(console, answer.error());
    if (answer && answer->item)
        item = answer->item;
    if (answer)
        console->note(MemoryTexts::forgetNote());
    if (!item || (!answer && code != ExitCode::Unknown))
        co_return code;
    line(console, *item);
    console->note(answer ? u"要撤销，把上面那一行交给：lumenpair memory restore"_s
                         : u"如果它已经被忘记，要撤销，把上面那一行交给：lumenpair memory restore"_s);
    co_return code;
}

QCoro::Task<ExitCode> MemoryCommands::restore(Application *application, Console *console, StandardInput *input,
                                              Command command) {
    const auto read = co_await text(console, input, command.file);
    if (!read)
        co_return ExitCode::Usage;
    const auto item = Json::decode<MemoryItemDTO>(read->trimmed().toUtf8());
    if (!item) {
        console->error(u"这不是忘记时给出的那一行。"_s);
        co_return ExitCode::Usage;
    }
    const auto answer = co_await MemoryService(application->api()).restore(*item);
    if (!answer)
        co_return notDone(console, answer.error());
    console->note(MemoryTexts::restored());
    co_return ExitCode::Submitted;
}

QCoro::Task<ExitCode> MemoryCommands::history(Application *application, Console *console, Command command) {
    const auto history = co_await MemoryService(application->api()).history(command.id);
    if (!history) {
        console->error(MemoryTexts::historyUnreadable(history.error().reason));
        co_return history.error().status == 401 ? ExitCode::NotSignedIn : ExitCode::Failed;
    }
    if (command.jsonl) {
        line(console, *history);
        co_return ExitCode::Submitted;
    }
    console->reply(u"现在："_s + history->current.simplified() + u'\n');
    for (const auto &entry : history->oldestFirst())
        console->reply(row(entry.at, entry.previous.simplified() + u" → "_s + entry.next, {entry.source}));
    if (history->entries.isEmpty())
        console->note(u"这条记忆还没有改动过。"_s);
    co_return ExitCode::Submitted;
}

QCoro::Task<std::optional<QString>> MemoryCommands::text(Console *console, StandardInput *input, QString file) {
    if (file.isEmpty() || file == u"-"_s) {
        auto all = co_await input->everything();
        if (!all)
            console->error(u"输入太长了。"_s);
        co_return all;
    }
    auto read = TextFile::read(file);
    if (!read) {
        console->error(read.error());
        co_return std::nullopt;
    }
    co_return *std::move(read);
}

QCoro::Task<ExitCode> MemoryCommands::import(Application *application, Console *console, StandardInput *input,
                                             Command command) {
    const auto read = co_await text(console, input, command.file);
    if (!read)
        co_return ExitCode::Usage;
    const auto messages = MemoryImport::messages(*read);
    if (messages.isEmpty()) {
        console->error(u"没有可以读的文字。"_s);
        co_return ExitCode::Usage;
    }
    if (const auto pieces = MemoryImport::countPieces(*read); pieces > MemoryImport::maxPieces)
        console->note(MemoryTexts::importCut(MemoryImport::maxPieces, pieces));
    console->note(MemoryTexts::extractNote());
    const auto answer = co_await MemoryService(application->api()).extract(messages);
    if (!answer) {
        console->error(MemoryTexts::importScanFailed() + u"。"_s);
        co_return answer.error().isTransport() ? ExitCode::Unknown : failed(console, answer.error());
    }
    if (answer->pipCharged)
        console->note(MemoryTexts::extractCost(*answer->pipCharged));
    if (answer->candidates.isEmpty()) {
        console->note(MemoryTexts::importNothingTitle() + u"。"_s + MemoryTexts::importNothingText());
        co_return ExitCode::Submitted;
    }
    showCandidates(console, answer->candidates, command.jsonl);
    // Nothing is written that nobody has picked.
    if (command.jsonl || !console->inputIsTerminal()) {
        console->note(u"还什么都没写进去。要写入：lumenpair memory confirm 编号"_s);
        co_return ExitCode::Submitted;
    }
    co_return co_await pick(application, console, input, answer->candidates);
}

QCoro::Task<ExitCode> MemoryCommands::pick(Application *application, Console *console, StandardInput *input,
                                           QList<MemoryCandidateDTO> candidates) {
    const auto chosen =
        co_await input->line(u"写入第几条？（1 到 %1，用空格分开；直接回车都不写）"_s.arg(candidates.size()));
    QList<qsizetype> picked;
    for (const QString &word : chosen.value_or(QString()).split(u' ', Qt::SkipEmptyParts)) {
        const auto number = word.toLongLong();
        if (number < 1 || number > candidates.size()) {
            console->error(u"没有第 %1 条，什么都没写进去。"_s.arg(word));
            co_return ExitCode::Usage;
        }
        if (!picked.contains(number - 1))
            picked << number - 1;
    }
    qsizetype written = 0, superseded = 0;
    for (const auto at : picked) {
        const auto answer = co_await MemoryService(application->api()).confirm(candidates[at].id);
        written += answer ? 1 : 0;
        superseded += answer && answer->supersededContent ? 1 : 0;
    }
    const auto missed = picked.size() - written;
    if (!picked.isEmpty())
        console->note(written > 0 ? MemoryTexts::importWritten(written) : MemoryTexts::importNothingWritten());
    if (written > 0 && missed > 0)
        console->note(MemoryTexts::importFailedItems(missed));
    if (superseded > 0)
        console->note(MemoryTexts::importSupersededItems(superseded));
    if (picked.size() < candidates.size())
        console->note(MemoryTexts::importSkippedNote());
    co_return missed > 0 ? ExitCode::Failed : ExitCode::Submitted;
}

} // namespace lmp
