#include "terminal/CrisisCommand.h"

#include "core/PlainLabel.h"
#include "identity/CrisisRegion.h"
#include "identity/CrisisResourcesService.h"
#include "identity/CrisisTexts.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

void showHead(Console &console) {
    console.reply(CrisisTexts::entry() + u'\n' + CrisisTexts::entrySubtitle() + u"\n\n"_s);
}

void showRules(Console &console) {
    QString text = u"\n"_s;
    for (const QString &rule : CrisisTexts::rules())
        text += u"· "_s + rule + u'\n';
    console.reply(text);
}

QString offeredRegions() {
    QString text = u"换一个地区：lumenpair crisis 代码（"_s;
    for (const CrisisRegion &region : CrisisRegion::all())
        text += region.code + u' ' + region.label + u"，"_s;
    text.chop(1);
    return text + u"）"_s;
}

void showNumbers(Console &console, const CrisisResourcesService::Resp &answer) {
    const bool known = answer.hasVerifiedNumbers();
    console.reply(CrisisRegion::labelOf(answer.region) + (known ? QString() : CrisisTexts::regionWithoutList()) +
                  u'\n');
    if (answer.assumedRegion.value_or(false))
        console.reply(CrisisTexts::assumedRegion() + u'\n');
    console.reply(answer.guidance + u'\n');
    if (!known)
        console.reply(CrisisTexts::pageWithoutNumbers() + u'\n');
    for (const auto &item : known ? answer.items : QList<CrisisResourcesService::Item>())
        console.reply(item.name + u"  "_s + PlainLabel::line(item.phone) +
                      (item.note ? u"  "_s + *item.note : QString()) + u'\n');
}

} // namespace

QCoro::Task<ExitCode> CrisisCommand::run(Application *application, Console *console, QString region) {
    const QString code = region.isEmpty() ? CrisisRegion::fallback().code : region.toUpper();
    const auto answer = co_await CrisisResourcesService(application->api()).load(code);
    showHead(*console);
    if (answer)
        showNumbers(*console, *answer);
    else
        console->reply(CrisisTexts::loadFailed(answer.error().reason) + u'\n');
    showRules(*console);
    console->note(offeredRegions());
    co_return answer ? ExitCode::Submitted : ExitCode::Failed;
}

void CrisisCommand::withoutService(Console &console, const QString &reason) {
    showHead(console);
    console.reply(CrisisTexts::loadFailed(reason) + u'\n');
    showRules(console);
}

} // namespace lmp
