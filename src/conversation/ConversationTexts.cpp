#include "conversation/ConversationTexts.h"

namespace lmp {

using namespace Qt::StringLiterals;

QString ConversationTexts::confirmationStale() {
    return u"输入、账号或作品版本已变化，未开始制作。请核对当前内容后再次发送。"_s;
}

QString ConversationTexts::heldByReply() {
    return u"回答或通话仍在进行。这条输入仅在本机待发，结束后请手动发送。"_s;
}

QString ConversationTexts::heldByCreation() {
    return u"当前创作仍在进行。这条输入尚未提交；可切换讨论，或完成后手动发送。"_s;
}

QString ConversationTexts::nothingTyped() {
    return u"还没有输入内容。"_s;
}

QString ConversationTexts::nothingOpen() {
    return u"还没有打开的对话，输入未提交。"_s;
}

QString ConversationTexts::accountChanged() {
    return u"账号已变化，输入未提交。请重新打开对话。"_s;
}

QString ConversationTexts::relayUnconfigured() {
    return u"对话服务暂时未接通。你的输入已保留，可以稍后重试。"_s;
}

QString ConversationTexts::refused() {
    return u"本次结果与结算尚未确认。输入已保留在对话中，请先查看账单。"_s;
}

QString ConversationTexts::chargedEmpty() {
    return u"这一轮没吐出内容。钱已经按这一轮算过了，所以不自动重试（重试会再扣一次）——换个说法再问一次。"_s;
}

QString ConversationTexts::endedEarly() {
    return u"连接已结束，尚未确认本次结果与结算。已收到的内容保留，请先查看账单。"_s;
}

QString ConversationTexts::interrupted() {
    return u"连接中断，已收到的内容保留。尚未确认本次结算，请先查看账单。"_s;
}

QString ConversationTexts::plainUnconfirmed() {
    return u"连接中断，结果与结算尚未确认。输入已保留在对话中，请先查看账单。"_s;
}

QString ConversationTexts::stopped() {
    return u"正在停止等待；已确认的结果会保留"_s;
}

QString ConversationTexts::leftReply() {
    return u"刚才那段对话的回答已停止，收到的部分留在那里。这一轮是否扣费，请看账单。"_s;
}

QString ConversationTexts::incognitoBanner() {
    return u"无痕对话 · 聊完什么都不留：不写历史、不记记忆"_s;
}

QString ConversationTexts::feedbackNotSent() {
    return u"反馈没有送到，稍后再试。"_s;
}

QString ConversationTexts::notSynchronised() {
    return u"尚未同步，草稿已保存在本机，连接恢复后可重试。"_s;
}

QString ConversationTexts::notKept() {
    return u"尚未同步，草稿也未能保存在本机。关闭前请先复制需要保留的内容。"_s;
}

QString ConversationTexts::leftNotKept(const QStringList &titles) {
    return u"「"_s + titles.join(u"」「"_s) + u"」还没有存到本机，会继续重试。关闭前请先打开它，复制需要保留的内容。"_s;
}

QString ConversationTexts::conflict() {
    return u"这段对话在别处有更新，尚未同步，本机内容已存为草稿。请先处理保存状态。"_s;
}

QString ConversationTexts::conflictNotKept() {
    return u"这段对话在别处有更新，尚未同步，草稿也未能保存在本机。关闭前请先复制需要保留的内容。"_s;
}

QString ConversationTexts::copyMark() {
    return u"（另存）"_s;
}

QString ConversationTexts::switchedAway() {
    return u"已切换对话，这次读取没有使用。"_s;
}

QString ConversationTexts::anotherConversation() {
    return u"读到的不是这段对话，没有打开。"_s;
}

QString ConversationTexts::recentUnreadable(const QString &reason) {
    const QString text = u"近期项目读取失败，请刷新重试。"_s;
    return reason.isEmpty() ? text : text + u'（' + reason + u'）';
}

QString ConversationTexts::draftWithoutAccount() {
    return u"没有登录账号，草稿未保存在本机。"_s;
}

QString ConversationTexts::draftWithoutConversation() {
    return u"这段对话缺少编号，草稿未保存在本机。"_s;
}

QString ConversationTexts::draftsUnreadable() {
    return u"本机草稿暂时无法读取，请稍后刷新；已保存的文件不会被删除。"_s;
}

QString ConversationTexts::draftNotWritten() {
    return u"草稿未能保存在本机。"_s;
}

QString ConversationTexts::draftChangedElsewhere() {
    return u"这段对话的本机草稿已在另一个窗口改动，没有覆盖。可以把这里的内容另存为新对话。"_s;
}

QString ConversationTexts::inputWithoutScope() {
    return u"这段输入还没有可归属的账号或对话，未保存在本机。"_s;
}

QString ConversationTexts::inputTooLarge() {
    return u"这段输入太长，未能保存在本机。请先复制到别处，或分几次发送。"_s;
}

QString ConversationTexts::inputChangedElsewhere() {
    return u"这段输入已在另一个窗口改动，没有覆盖。请先核对那边的内容。"_s;
}

QString ConversationTexts::inputUnreadable() {
    return u"未发送输入暂时无法读取，请稍后刷新。"_s;
}

QString ConversationTexts::inputsKeptUnread() {
    return u"有未发送输入暂时无法读取，原文件已保留。"_s;
}

QString ConversationTexts::inputNotWritten() {
    return u"这段输入未能保存在本机，请不要关闭窗口。"_s;
}

QString ConversationTexts::retryOffer() {
    return u"换个思路再来一次 · 这次免费"_s;
}

QString ConversationTexts::retryNeedsSave() {
    return u"请先保存这段对话，再重新回答。"_s;
}

QString ConversationTexts::retryUnconfirmed() {
    return u"没能确认这次回答。旧回答和输入已保留，请重新打开对话核对。"_s;
}

QString ConversationTexts::retryUnmatched() {
    return u"尚未核对到这次回答。旧回答和输入已保留，请重新打开对话核对。"_s;
}

QString ConversationTexts::retryConversationChanged() {
    return u"回答已更新，但这段对话同时有新内容。已保留当前记录和待同步内容，请先处理保存状态，再查看最新回答。"_s;
}

QString ConversationTexts::retryWorkspaceChanged() {
    return u"回答已更新，但制作期间项目也有更改。已保留本机内容，请先处理保存提示，再重新打开对话查看最新回答。"_s;
}

QString ConversationTexts::retryRunning() {
    return u"正在重试原消息 · 可编辑或改为创作"_s;
}

QString ConversationTexts::retryStale() {
    return u"重试目标已变化，请重新选择失败的消息，或清除重试后发送新消息。"_s;
}

QString ConversationTexts::retryWithoutMessageId() {
    return u"这次回答缺少有效的消息编号，旧回答和输入已保留。请重新打开对话核对。"_s;
}

QString ConversationTexts::retryMismatch() {
    return u"回答编号与已有内容不一致，旧回答和输入已保留。请重新打开对话核对。"_s;
}

QString ConversationTexts::failedMessage() {
    return u"重试或改为创作"_s;
}

QString ConversationTexts::awaitingReply() {
    return u"正在等待回答"_s;
}

QString ConversationTexts::replyArriving() {
    return u"正在回答"_s;
}

QString ConversationTexts::unknownMessage() {
    return u"结果待确认，请先查看账单"_s;
}

QString ConversationTexts::unknownCreation() {
    return u"创作结果待确认，请查看原作品和账单"_s;
}

QString ConversationTexts::creationReceiptPending() {
    return u"创作要求已在本机记录，服务回执待确认"_s;
}

QString ConversationTexts::inputBoxOccupied() {
    return u"输入框还有未发送内容或已选目标，已为你保留。请先发送或复制保留并清空，再恢复这条失败消息。"_s;
}

QString ConversationTexts::usedMemories(qsizetype count) {
    return u"本次用到你的 "_s + QString::number(count) + u" 条记忆 · 看"_s;
}

QString ConversationTexts::usedMemoriesNote(qsizetype count) {
    return u"这里列出该轮返回的 "_s + QString::number(count) +
           u" 条记忆摘要，不代表完整注入量；当前摘要未附可定位的来源。"_s;
}

QString ConversationTexts::draftsKeptUnread(qsizetype count) {
    return QString::number(count) + u" 份本机草稿暂时无法读取，原文件已保留。"_s;
}

} // namespace lmp
