#include "screens/memory/MemoryDeeds.h"

#include "core/Detach.h"
#include "identity/MemoryTexts.h"
#include "screens/memory/MemoryCorrectionModel.h"
#include "screens/memory/MemoryInputs.h"

#include <QPointer>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// The words of the service's contract.
const QString accepted = u"accept"_s;
const QString rejected = u"reject"_s;

/// Whether the service has said that it did nothing, to something that it has.
bool isRefusal(const APIError &error) {
    return error.status >= 400 && error.status < 500 && error.status != 404 && error.status != 408;
}

} // namespace

MemoryDeeds::MemoryDeeds(MemoryServices services, MemoryItemsModel &items, Candidates &candidates, Chapters &chapters,
                         QObject *parent)
    : QObject(parent)
    , m_services(std::move(services))
    , m_items(items)
    , m_candidates(candidates)
    , m_chapters(chapters) {}

bool MemoryDeeds::begin(const QString &id) {
    if (m_busy.contains(id))
        return false;
    m_busy.insert(id);
    tellBusy();
    return true;
}

void MemoryDeeds::tellBusy() {
    for (const QString &id : std::as_const(m_busy))
        m_items.setBusy(id, true);
    auto candidates = m_candidates.records();
    for (auto &candidate : candidates)
        candidate.busy = m_busy.contains(candidate.candidateId);
    m_candidates.setRecords(std::move(candidates));
    auto chapters = m_chapters.records();
    for (auto &chapter : chapters)
        chapter.busy = m_busy.contains(chapter.chapterId);
    m_chapters.setRecords(std::move(chapters));
}

template <class T>
QCoro::Task<> MemoryDeeds::ask(QString id, QCoro::Task<Result<T>> pending,
                               std::function<void(const Result<T> &)> done) {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_services.account.owner();
    const Result<T> answer = co_await pending;
    if (!self || m_generation != generation)
        co_return;
    if (!m_services.account.isStill(owner)) {
        Q_EMIT ownerChanged();
        co_return;
    }
    m_busy.remove(id);
    m_items.setBusy(id, false);
    tellBusy();
    done(answer);
    if (!self || m_generation != generation)
        co_return;
    Q_EMIT changed();
    if (self && answer)
        Q_EMIT overtaken();
}

void MemoryDeeds::fail(const APIError &error, const QString &refused) {
    const QPointer self(this);
    const bool known = isRefusal(error);
    Q_EMIT told(known ? refused : MemoryTexts::outcomeUnknown(), true);
    if (self && !known)
        Q_EMIT doubted();
}

void MemoryDeeds::takeCandidate(const QString &id) {
    auto candidates = m_candidates.records();
    std::erase_if(candidates, [&](const auto &candidate) { return candidate.candidateId == id; });
    m_candidates.setRecords(std::move(candidates));
}

void MemoryDeeds::confirm(const QString &candidateId) {
    if (begin(candidateId))
        detach(ask<MemoryService::ConfirmResp>(
                   candidateId, m_services.service.confirm(candidateId),
                   [this, candidateId](const auto &answer) { onConfirmed(candidateId, answer); }),
               "confirming a candidate");
}

void MemoryDeeds::onConfirmed(const QString &id, const Result<MemoryService::ConfirmResp> &answer) {
    if (!answer)
        return fail(answer.error(), MemoryTexts::candidateNotConfirmed());
    takeCandidate(id);
    if (answer->item)
        m_items.put(*answer->item);
    const QPointer self(this);
    Q_EMIT told(answer->supersededContent ? MemoryTexts::confirmedInPlaceOf(*answer->supersededContent)
                                          : MemoryTexts::candidateConfirmed(),
                false);
    if (self && !answer->item)
        Q_EMIT doubted();
}

void MemoryDeeds::dismiss(const QString &candidateId) {
    if (begin(candidateId))
        detach(ask<APIClient::Empty>(candidateId, m_services.service.dismiss(candidateId),
                                     [this, candidateId](const auto &answer) {
                                         if (answer)
                                             takeCandidate(candidateId);
                                         else
                                             fail(answer.error(), MemoryTexts::candidateNotDropped());
                                     }),
               "dismissing a candidate");
}

void MemoryDeeds::setFrozen(const QString &memoryId, bool frozen) {
    const auto done = [this, memoryId, frozen](const Result<APIClient::Empty> &answer) {
        if (!answer)
            return fail(answer.error(), MemoryTexts::notDone(frozen ? u"冻结"_s : u"解冻"_s, answer.error().reason));
        if (const auto *item = m_items.find(memoryId)) {
            auto changedItem = *item;
            changedItem.frozen = frozen;
            m_items.put(changedItem);
        }
    };
    if (begin(memoryId))
        detach(ask<APIClient::Empty>(memoryId, m_services.service.freeze(memoryId, frozen), done), "freezing a memory");
}

void MemoryDeeds::forget(const QString &memoryId) {
    if (begin(memoryId))
        detach(ask<MemoryService::ForgetResp>(memoryId, m_services.service.forget(memoryId),
                                              [this, memoryId](const auto &answer) { onForgotten(memoryId, answer); }),
               "forgetting a memory");
}

void MemoryDeeds::onForgotten(const QString &id, const Result<MemoryService::ForgetResp> &answer) {
    const auto *shown = m_items.find(id);
    std::optional<Forgotten> gone;
    if (shown)
        gone = Forgotten{.item = *shown, .place = std::max(0, m_items.placeOf(id))};
    // What the service gives is as it was when it went.
    if (answer && answer->item)
        gone = Forgotten{.item = *answer->item, .place = gone ? gone->place : 0};
    if (!answer) {
        if (!isRefusal(answer.error()))
            m_doubtful = gone;
        return fail(answer.error(), MemoryTexts::notDone(u"忘记"_s, answer.error().reason));
    }
    m_forgotten = gone;
    MemoryCorrectionModel::giveUp(*m_services.inputs, id);
    m_items.remove(id);
}

QString MemoryDeeds::undoText() const {
    return m_forgotten ? MemoryTexts::forgotten(m_forgotten->item.content) : QString();
}

void MemoryDeeds::closeUndo() {
    m_forgotten.reset();
    Q_EMIT changed();
}

void MemoryDeeds::undoForget() {
    if (!m_forgotten || !begin(m_forgotten->item.id))
        return;
    detach(ask<APIClient::Empty>(m_forgotten->item.id, m_services.service.restore(m_forgotten->item),
                                 [this, what = *m_forgotten](const auto &answer) { onRestored(what, answer); }),
           "restoring a memory");
}

void MemoryDeeds::onRestored(const Forgotten &what, const Result<APIClient::Empty> &answer) {
    // Another may have been forgotten meanwhile: what can still be taken back stays so.
    if (!answer)
        return fail(answer.error(), MemoryTexts::notDone(u"恢复"_s, answer.error().reason));
    m_items.put(what.item, what.place);
    if (m_forgotten && m_forgotten->item.id == what.item.id)
        m_forgotten.reset();
    Q_EMIT told(MemoryTexts::restored(), false);
}

void MemoryDeeds::resolveChapter(const QString &chapterId, bool accept) {
    if (begin(chapterId))
        detach(ask<APIClient::Empty>(
                   chapterId, m_services.service.resolveChapter(chapterId, accept ? accepted : rejected),
                   [this, chapterId, accept](const auto &answer) { onResolved(chapterId, accept, answer); }),
               "resolving a chapter");
}

void MemoryDeeds::onResolved(const QString &id, bool accept, const Result<APIClient::Empty> &answer) {
    if (!answer)
        return fail(answer.error(),
                    MemoryTexts::notDone(accept ? u"收下这一章"_s : u"去掉这一章"_s, answer.error().reason));
    auto chapters = m_chapters.records();
    const auto chapter = std::ranges::find(chapters, id, &ChapterRow::chapterId);
    if (chapter != chapters.end() && accept)
        chapter->pending = false;
    else if (chapter != chapters.end())
        chapters.erase(chapter);
    m_chapters.setRecords(std::move(chapters));
}

void MemoryDeeds::settle() {
    // The ledger tells what no answer has told.
    if (const auto doubtful = std::exchange(m_doubtful, std::nullopt); doubtful && !m_items.find(doubtful->item.id))
        m_forgotten = doubtful;
    if (m_forgotten && m_items.find(m_forgotten->item.id))
        m_forgotten.reset();
    tellBusy();
}

void MemoryDeeds::drop() {
    ++m_generation;
    m_busy.clear();
    m_forgotten.reset();
    m_doubtful.reset();
}

} // namespace lmp
