#include "screens/chat/ExtractionModel.h"

#include "core/Detach.h"
#include "identity/MemoryTexts.h"

#include <QPointer>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

ExtractionModel::ExtractionModel(const APIClient &api, ConversationSession &session, std::function<bool()> isIdle,
                                 QObject *parent)
    : QObject(parent)
    , m_service(api)
    , m_memories(api)
    , m_session(session)
    , m_isIdle(std::move(isIdle)) {
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

bool ExtractionModel::allHandled() const {
    return std::ranges::none_of(extracted(), [](const Row &row) { return row.handledText.isEmpty(); });
}

QString ExtractionModel::place() const {
    const auto *conversation = m_session.conversation();
    return m_session.account().key() + u'\n' + (conversation ? conversation->id : QString());
}

void ExtractionModel::reset() {
    ++m_generation;
    m_extracting = false;
    m_message.clear();
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

void ExtractionModel::extract() {
    const auto *conversation = m_session.conversation();
    if (m_extracting || !conversation || !m_session.belongsToCurrentAccount())
        return;
    if (m_session.incognito())
        return say(MemoryTexts::extractIncognito());
    if (!m_isIdle())
        return say(u"回复还没有结束，等它说完再整理。"_s);
    const auto upTo = conversation->messages.size();
    const auto body = MemoryExtractService::Body::of(*conversation, std::min(extractedUpTo(), upTo));
    if (body.messages.isEmpty())
        return say(MemoryTexts::extractNothingNew());
    m_extracting = true;
    m_message.clear();
    detach(extractNow(body, place(), upTo), "reading a conversation for memories");
    Q_EMIT changed();
}

QCoro::Task<> ExtractionModel::extractNow(MemoryExtractService::Body body, QString place, qsizetype upTo) {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto answer = co_await m_service.extract(body);
    if (!self)
        co_return;
    // It was read, and paid for, whatever is open now.
    if (answer)
        m_extractedUpTo.insert(place, upTo);
    if (m_generation != generation || this->place() != place)
        co_return;
    m_extracting = false;
    if (!answer) {
        say(MemoryTexts::extractFailed());
        co_return;
    }
    m_extractCharge = answer->pipCharged;
    if (answer->candidates.isEmpty()) {
        say(MemoryTexts::extractNoCandidates());
        co_return;
    }
    std::vector<Row> rows;
    for (const auto &candidate : answer->candidates)
        rows.push_back({.candidateId = candidate.id,
                        .content = candidate.content,
                        .why = candidate.why,
                        .scope = candidate.scope,
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
