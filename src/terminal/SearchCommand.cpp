#include "terminal/SearchCommand.h"

#include "core/Json.h"
#include "terminal/SessionGate.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

struct SearchLine {
    QString conversationId;
    QString title;
    QString messageId;
    TalkRole role = TalkRole::user;
    QString excerpt;
};
BOOST_DESCRIBE_STRUCT(SearchLine, (), (conversationId, title, messageId, role, excerpt))

void show(Console *console, const ConversationSearchHit &hit, bool json) {
    if (json) {
        console->line(Json::encode(SearchLine{.conversationId = hit.conversationId,
                                              .title = hit.title,
                                              .messageId = hit.messageId,
                                              .role = hit.role,
                                              .excerpt = hit.excerpt}));
        return;
    }
    const QString title = hit.title.isEmpty() ? u"（无标题）"_s : hit.title.simplified();
    console->reply(hit.conversationId + u'\t' + title + u'\t' + (hit.role == TalkRole::user ? u"你："_s : u"分身："_s) +
                   hit.excerpt + u'\n');
}

} // namespace

QCoro::Task<ExitCode> SearchCommand::run(Application *application, Console *console, CommandLine line) {
    if (const auto refused = co_await SessionGate::pass(application, console))
        co_return *refused;
    auto &search = application->search();
    // A first search may have thousands of conversations to read.
    qsizetype said = 0;
    const auto progress = QObject::connect(&search, &ConversationSearch::coverageChanged, &search, [&] {
        const auto &coverage = search.coverage();
        if (coverage.known && coverage.working && coverage.indexed >= said + 50) {
            said = coverage.indexed;
            console->note(u"正在收录对话：%1 / %2"_s.arg(coverage.indexed).arg(coverage.total));
        }
    });
    co_await search.catchUp();
    QObject::disconnect(progress);
    const auto page = co_await search.find(line.text.join(u' '), {}, line.most);
    if (!page) {
        console->error(page.error());
        co_return ExitCode::Failed;
    }
    for (const auto &hit : page->hits)
        show(console, hit, line.jsonl);
    if (page->hits.isEmpty())
        console->note(u"没有找到。"_s);
    else if (page->more)
        console->note(
            (page->totalIsAtLeast ? u"至少有 %1 条，这里是最近的 %2 条。"_s : u"一共 %1 条，这里是最近的 %2 条。"_s)
                .arg(page->total)
                .arg(page->hits.size()));
    const auto &coverage = search.coverage();
    if (!coverage.complete())
        console->error(coverage.text());
    co_return coverage.known ? ExitCode::Submitted : ExitCode::Failed;
}

} // namespace lmp
