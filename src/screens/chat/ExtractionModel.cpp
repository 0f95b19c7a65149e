#include "screens/chat/ExtractionModel.h"

#include "core/Detach.h"
#include "core/PlainLabel.h"
#include "identity/MemoryTexts.h"

#include <QPointer>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

ExtractionModel::ExtractionModel(const APIClient &api, ConversationSession &session, std::function<bool()> isIdle,
                                 ExtractionProgress *progress, QObject *parent)
    : QObject(parent)
    , m_service(api)
    , m_memories(api)
    , m_session(session)
    , m_isIdle(std::move(isIdle))
    , m_progress(progress ? progress : &m_own) {
    connect(m_progress, &ExtractionProgress::changed, this, &ExtractionModel::changed);
    connect(&session, &ConversationSession::opened, this, &ExtractionModel::reset);
}

QString ExtractionModel::note() {
    return MemoryTexts::extractNote();
}

QString ExtractionModel::candidatesNote() {
    return MemoryTexts::candidatesNote();
}

QString ExtractionModel::laterText() {
    return MemoryTexts::candidatesLater();
}

QString ExtractionModel::laterNote() {
    return MemoryTexts::candidatesLaterNote();
}

QString ExtractionModel::costText() const {
    return m_open ? MemoryTexts::extractCost(m_extractCharge) : QString();
}

QString ExtractionModel::leftText() const {
    return m_left > 0 ? MemoryTexts::extractLeft(m_left) : QString();
}

bool ExtractionModel::allHandled() const {
    return std::ranges::none_of(extracted(), [](const Row &row) { return row.handledText.isEmpty(); });
}

QString ExtractionModel::place() const {
    const auto *conversation = m_session.conversation();
    return ExtractionProgress::place(m_session.account().key(), conversation ? conversation->id : QString());
}

void ExtractionModel::reset() {
    ++m_generation;
    m_message.clear();
    m_left = 0;
    m_extractCharge = 0;
    m_open = false;
    m_report.clear();
    m_extracted.setRecords({});
    Q_EMIT changed();
}

void ExtractionModel::say(const QString &message) {
    m_message = message;
    Q_EMIT changed();
}

void ExtractionModel::clearMessage() {
    say({});
}

void ExtractionModel::carryOver(const QString &conversationId) {
    m_progress->carryOver(ExtractionProgress::place(m_session.account().key(), conversationId), place());
}

void ExtractionModel::extract() {
    const auto *conversation = m_session.conversation();
    if (!conversation || !m_session.belongsToCurrentAccount() || extracting())
        return;
    if (m_session.incognito())
        return say(MemoryTexts::extractIncognito());
    if (!m_isIdle())
        return say(u"回复还没有结束，等它说完再整理。"_s);
    const auto from = std::min(extractedUpTo(), conversation->messages.size());
    const auto portion = MemoryExtractService::Portion::of(*conversation, from);
    if (portion.body.messages.isEmpty())
        return say(MemoryTexts::extractNothingNew());
    m_message.clear();
    detach(extractNow(portion, m_progress->begin(place())), "reading a conversation for memories");
}

QCoro::Task<> ExtractionModel::extractNow(MemoryExtractService::Portion portion, ExtractionProgress::Ticket ticket) {
    const QPointer self(this);
    const QPointer progress = m_progress;
    const auto answer = co_await m_service.extract(portion.body);
    // Somebody may have gone away and come back meanwhile, and is shown what it was.
    const bool isHere = self && progress && progress->isReading(place(), ticket);
    // It was read, and paid for, whatever is open now.
    if (progress)
        progress->end(ticket, answer ? std::optional(portion.upTo) : std::nullopt);
    if (!self || !isHere || !m_session.belongsToCurrentAccount())
        co_return;
    if (!answer) {
        say(MemoryTexts::extractFailed());
        co_return;
    }
    m_left = portion.left;
    take(*answer);
}

void ExtractionModel::take(const MemoryExtractService::Resp &answer) {
    m_extractCharge = answer.pipCharged;
    if (answer.candidates.isEmpty())
        return say(MemoryTexts::extractNoCandidates() + leftText());
    std::vector<Row> rows;
    for (const auto &candidate : answer.candidates)
        rows.push_back({.candidateId = candidate.id,
                        .content = PlainLabel::content(candidate.content),
                        .why = PlainLabel::lines(candidate.why),
                        .scope = PlainLabel::line(candidate.scope),
                        .handledText = {}});
    m_extracted.setRecords(std::move(rows));
    m_report.clear();
    m_open = true;
    Q_EMIT changed();
}

bool ExtractionModel::begin(const QString &candidateId) {
    auto rows = m_extracted.records();
    const auto row = std::ranges::find(rows, candidateId, &Row::candidateId);
    if (row == rows.end() || row->busy || !row->handledText.isEmpty() || !m_session.belongsToCurrentAccount())
        return false;
    row->busy = true;
    m_extracted.setRecords(std::move(rows));
    Q_EMIT changed();
    return true;
}

void ExtractionModel::end(const QString &candidateId, const QString &handledText, const QString &report, bool failed) {
    auto rows = m_extracted.records();
    const auto row = std::ranges::find(rows, candidateId, &Row::candidateId);
    if (row != rows.end()) {
        row->busy = false;
        row->handledText = handledText;
    }
    m_extracted.setRecords(std::move(rows));
    m_report = report;
    m_reportFailed = failed;
    Q_EMIT changed();
}

void ExtractionModel::confirm(const QString &candidateId) {
    if (begin(candidateId))
        detach(confirmNow(candidateId), "confirming what was found in a chat");
}

QCoro::Task<> ExtractionModel::confirmNow(QString candidateId) {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto answer = co_await m_memories.confirm(candidateId);
    if (!self || m_generation != generation)
        co_return;
    if (!answer)
        end(candidateId, {}, MemoryTexts::candidateNotTaken(), true);
    else
        end(candidateId, u"已收下"_s,
            answer->supersededContent ? MemoryTexts::candidateTookPlaceOf(*answer->supersededContent) : QString(),
            false);
}

void ExtractionModel::dismiss(const QString &candidateId) {
    if (begin(candidateId))
        detach(dismissNow(candidateId), "dismissing what was found in a chat");
}

QCoro::Task<> ExtractionModel::dismissNow(QString candidateId) {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto answer = co_await m_memories.dismiss(candidateId);
    if (!self || m_generation != generation)
        co_return;
    end(candidateId, answer ? u"已丢掉"_s : QString(), answer ? QString() : MemoryTexts::candidateNotDropped(),
        !answer);
}

void ExtractionModel::close() {
    if (!m_open)
        return;
    m_open = false;
    Q_EMIT changed();
}

} // namespace lmp
