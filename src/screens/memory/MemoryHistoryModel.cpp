#include "screens/memory/MemoryHistoryModel.h"

#include "core/Detach.h"
#include "identity/MemoryTexts.h"
#include "screens/memory/MemoryItemsModel.h"

#include <QPointer>

#include <ranges>

namespace lmp {

using namespace Qt::StringLiterals;

MemoryHistoryModel::MemoryHistoryModel(MemoryServices services, QObject *parent)
    : QObject(parent)
    , m_services(std::move(services)) {}

bool MemoryHistoryModel::canRevert() const {
    return m_state == State::Loaded && m_history.canRevert && m_history.revision && !m_stale;
}

void MemoryHistoryModel::open(const QString &memoryId) {
    drop();
    m_memoryId = memoryId;
    reload();
}

void MemoryHistoryModel::reload() {
    if (m_memoryId.isEmpty())
        return;
    ++m_generation;
    settle(State::Loading, MemoryTexts::historyLoading(), false);
    detach(load({}), "reading a memory's history");
}

QCoro::Task<> MemoryHistoryModel::load(QString told) {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_services.account.owner();
    const auto history = co_await m_services.service.history(m_memoryId);
    if (!self || !isStill(generation, owner))
        co_return;
    if (!history) {
        settle(State::Unreadable, MemoryTexts::historyUnreadable(history.error().reason), true);
        co_return;
    }
    m_history = *history;
    m_stale = false;
    std::vector<Entry> entries;
    const auto changes = history->oldestFirst();
    for (const auto &entry : changes | std::views::reverse) {
        QStringList detail{entry.source, MemoryItemsModel::dateText(entry.at)};
        detail.removeAll(QString());
        entries.push_back({.previous = entry.previous, .next = entry.next, .detail = detail.join(u" · "_s)});
    }
    m_entries.setRecords(std::move(entries));
    settle(State::Loaded, told, false);
}

bool MemoryHistoryModel::isStill(quint64 generation, const QString &owner) {
    if (m_generation != generation)
        return false;
    if (m_services.account.isStill(owner))
        return true;
    drop(MemoryTexts::accountChanged());
    return false;
}

void MemoryHistoryModel::settle(State state, const QString &message, bool failed) {
    m_state = state;
    m_message = message;
    m_failed = failed;
    Q_EMIT changed();
}

void MemoryHistoryModel::revert() {
    if (!canRevert())
        return;
    settle(State::Reverting, {}, false);
    detach(revertNow(), "going back to the wording before");
}

QCoro::Task<> MemoryHistoryModel::revertNow() {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_services.account.owner();
    const QString memoryId = m_memoryId;
    const auto outcome = co_await m_services.service.revert(memoryId, *m_history.revision);
    if (!self)
        co_return;
    if (m_generation != generation && m_services.account.isStill(owner))
        tellUnseen(memoryId, outcome);
    if (!self || !isStill(generation, owner))
        co_return;
    if (const auto *done = std::get_if<MemoryRevertOutcome::done>(&outcome.value)) {
        const QString content = done->content;
        m_history.current = content;
        m_history.revision = done->revision;
        Q_EMIT reworded(memoryId, content);
        if (self && m_generation == generation)
            co_await load(MemoryTexts::reverted());
    } else if (const auto *unchanged = std::get_if<MemoryRevertOutcome::unchanged>(&outcome.value))
        settle(State::Loaded, unchanged->message, false);
    else {
        // What the person sees is not, or may not be, what there is.
        m_stale = true;
        const auto *failed = std::get_if<MemoryRevertOutcome::failed>(&outcome.value);
        settle(State::Loaded, failed ? failed->message : MemoryTexts::revertConflict(), true);
    }
}

void MemoryHistoryModel::tellUnseen(const QString &memoryId, const MemoryRevertOutcome &outcome) {
    if (const auto *done = std::get_if<MemoryRevertOutcome::done>(&outcome.value))
        Q_EMIT reworded(memoryId, done->content);
    else if (const auto *failed = std::get_if<MemoryRevertOutcome::failed>(&outcome.value))
        Q_EMIT settledUnseen(failed->message, true);
    else if (std::holds_alternative<MemoryRevertOutcome::conflict>(outcome.value))
        Q_EMIT settledUnseen(MemoryTexts::revertConflict(), true);
}

void MemoryHistoryModel::drop(const QString &why) {
    ++m_generation;
    m_memoryId.clear();
    m_history = {};
    m_stale = false;
    m_entries.setRecords({});
    settle(why.isEmpty() ? State::Closed : State::Unreadable, why, !why.isEmpty());
}

} // namespace lmp
