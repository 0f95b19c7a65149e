#include "identity/MemoryTexts.h"

#include "core/Graphemes.h"

namespace lmp {

using namespace Qt::StringLiterals;

QString MemoryTexts::loadFailed() {
    return u"记忆读取失败"_s;
}

QString MemoryTexts::emptyTitle() {
    return u"还没有记住关于你的事"_s;
}

QString MemoryTexts::emptyText() {
    return u"你可以逐条确认、纠正或忘记记下的内容。"_s;
}

QString MemoryTexts::noMatchTitle() {
    return u"没有匹配的记忆"_s;
}

QString MemoryTexts::noMatchText() {
    return u"换个关键词，或选择全部查看。"_s;
}

QString MemoryTexts::accountChanged() {
    return u"登录状态已改变，请重新打开记忆。"_s;
}

QString MemoryTexts::superseded() {
    return u"这条记忆已被取代"_s;
}

QString MemoryTexts::supersedes() {
    return u"取代了更早的结论"_s;
}

QString MemoryTexts::confirmedInPlaceOf(const QString &content) {
    // The ellipsis stands there however short the wording is.
    return u"已收下，并取代了更早的「"_s + Graphemes::first(content, 14) + u"…」；旧条仍可在「已取代」中查看。"_s;
}

QString MemoryTexts::forgetNote() {
    return u"忘记后不再用于长期理解。原对话的内容由对话管理单独处理。"_s;
}

QString MemoryTexts::forgotten(const QString &content) {
    return u"已忘记「"_s + Graphemes::first(content, 14) +
           (Graphemes::first(content, 14) == content ? u"」。"_s : u"…」。"_s) + forgetNote();
}

QString MemoryTexts::restored() {
    return u"已恢复，这条记忆又在账本里了。"_s;
}

QString MemoryTexts::notDone(const QString &what, const QString &reason) {
    return u"没能"_s + what + u"："_s + reason;
}

QString MemoryTexts::outcomeUnknown() {
    return u"没有收到确认，不知道做没做成。正在重新读取账本，以账本里的为准。"_s;
}

QString MemoryTexts::candidateNotConfirmed() {
    return u"没记下来，稍后再试——这条仍在「等你确认」里。"_s;
}

QString MemoryTexts::candidateConfirmed() {
    return u"已收下，记进账本了。"_s;
}

QString MemoryTexts::noRevision() {
    return u"当前服务尚未提供可核对的版本，暂不能安全保存。"_s;
}

QString MemoryTexts::becomesFact() {
    return u"纠正后，这条会记为「你确认过的事实」。想改成推断/故事这类分档，功能还没接上。"_s;
}

QString MemoryTexts::correctionSavedTitle() {
    return u"改好了，我记住了"_s;
}

QString MemoryTexts::correctionSavedText() {
    return u"新的说法已保存到记忆账本。旧文和这次改动都有记录；后续建议是否正确引用，仍需核对。"_s;
}

QString MemoryTexts::correctionConflict(const QString &current) {
    if (current.isEmpty())
        return u"这条记忆已在别处更新，输入已保留。请重新打开后修改。"_s;
    return u"这条记忆已在别处更新，输入已保留。当前记忆："_s + current + u"。请重新打开后修改。"_s;
}

QString MemoryTexts::correctionUnknown() {
    return u"未确认保存结果。请先检查最新记忆，不会重复提交。"_s;
}

QString MemoryTexts::revisionNotConfirmed() {
    return u"保存版本未确认，请重新打开记忆。"_s;
}

QString MemoryTexts::reverted() {
    return u"已改回上一版——这次「改回」本身也记进了版本历史。"_s;
}

QString MemoryTexts::revertedIsFact() {
    return u"这条又是原来的说法了。它现在记为「你确认过的事实」——因为改回去也是你亲口确认的一次。"_s;
}

QString MemoryTexts::nothingToRevert() {
    return u"这条已经是上一版的说法了，没有改动。"_s;
}

QString MemoryTexts::revertConflict() {
    return u"记忆已在别处更新，没有覆盖新内容。请核对后重新打开。"_s;
}

QString MemoryTexts::revertUnknown() {
    return u"未确认改回结果。请先检查最新记忆，不会重复提交。"_s;
}

QString MemoryTexts::revertNotConfirmed() {
    return u"未确认改回结果，请先检查最新记忆。"_s;
}

QString MemoryTexts::historyLoading() {
    return u"正在读版本历史…"_s;
}

QString MemoryTexts::historyUnreadable(const QString &reason) {
    // What the service says may be a whole sentence.
    const QString said = reason.endsWith(u'。') ? reason.chopped(1) : reason;
    return u"没读到版本历史："_s + said + u"。这不代表「这条没改过」。"_s;
}

QString MemoryTexts::importReadsOnly() {
    return u"这一步只读取，不写入。写入在第 3 步，你会再确认一次。"_s;
}

QString MemoryTexts::importChatFile() {
    return u"聊天记录文件"_s;
}

QString MemoryTexts::importFiller() {
    return u"（补充：以上就是我想让你记住的内容）"_s;
}

QString MemoryTexts::importNothingTitle() {
    return u"没扫出可记的条目"_s;
}

QString MemoryTexts::importNothingText() {
    return u"这段文本里没有值得长期记住的事实/偏好，或都与已有记忆重复。"_s;
}

QString MemoryTexts::importScanFailed() {
    return u"扫描失败，稍后再试"_s;
}

QString MemoryTexts::importSkippedNote() {
    return u"跳过的留在隔离区，记忆账本里随时能再确认或清掉。旧事实比没有事实更麻烦——拿不准就先不写。"_s;
}

QString MemoryTexts::importNothingWritten() {
    return u"一条都没写进去，稍后再试"_s;
}

QString MemoryTexts::importFailedItems(qsizetype count) {
    return QString::number(count) + u" 条没写进去，仍留在隔离区——记忆账本的「等你确认」里能再试。"_s;
}

QString MemoryTexts::importSupersededItems(qsizetype count) {
    return QString::number(count) + u" 条取代了你更早的记忆——旧的仍留在账本里，标着「已被取代」。"_s;
}

QString MemoryTexts::importWritten(qsizetype count) {
    return u"写进了 "_s + QString::number(count) + u" 条。"_s;
}

QString MemoryTexts::importCut(qsizetype taken, qsizetype all) {
    return u"这段文本有 "_s + QString::number(all) + u" 段，一次只读前 "_s + QString::number(taken) + u" 段。"_s;
}

QString MemoryTexts::importRest(qsizetype count) {
    return u"还有 "_s + QString::number(count) + u" 段没有扫描，文本还在，可以接着扫。"_s;
}

QString MemoryTexts::extractNote() {
    return u"整理会调用 AI，并按实际消耗结算 Pip。候选记忆需你确认后保存。"_s;
}

QString MemoryTexts::extractNothingNew() {
    return u"还没有新的内容需要整理。"_s;
}

QString MemoryTexts::extractNoCandidates() {
    return u"这次没有新的记忆候选。"_s;
}

QString MemoryTexts::extractFailed() {
    return u"整理未完成，请稍后重试。"_s;
}

QString MemoryTexts::extractLeft(qsizetype count) {
    return u"还有 "_s + QString::number(count) + u" 条消息没有整理，可以接着整理。"_s;
}

QString MemoryTexts::extractIncognito() {
    return u"无痕对话不记记忆，不能整理。"_s;
}

QString MemoryTexts::extractCost(qint64 amount) {
    return u"整理这一次花了 "_s + QString::number(amount) + u" Pip"_s;
}

QString MemoryTexts::candidatesNote() {
    return u"一条都还没生效。你说「是这样」它才进记忆，说「不对」我就丢掉。"_s;
}

QString MemoryTexts::candidatesLater() {
    return u"先这样，回头再看"_s;
}

QString MemoryTexts::candidatesLaterNote() {
    return u"没处理的会留在「分身 → 记忆账本」的待确认里，不会丢。"_s;
}

QString MemoryTexts::candidateTookPlaceOf(const QString &content) {
    return u"已收下，并取代了更早的「"_s + content + u"…」——旧的仍留在记忆账本里，标着有效期。"_s;
}

QString MemoryTexts::candidateNotTaken() {
    return u"没记下来，稍后再试——这条仍在「分身 → 记忆账本」的待确认里。"_s;
}

QString MemoryTexts::candidateNotDropped() {
    return u"没丢掉，稍后再试。"_s;
}

} // namespace lmp
