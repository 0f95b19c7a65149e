#include "conversation/KeptTexts.h"

#include "conversation/KeptTextClaim.h"
#include "conversation/KeptTextWrite.h"
#include "core/Detach.h"
#include "core/FilesSettled.h"
#include "core/PoolAwaiter.h"
#include "platform/FileThread.h"

#include <QPointer>
#include <QUuid>

#include <algorithm>

namespace lmp {

using StoreError = ConversationInputDraftStore::StoreError;
using Entry = KeptText::Entry;
using Copy = KeptText::Copy;

namespace {

/// On the file thread, in the order of what is written there.
void setKnown(const KeptText::WriteId &known, const std::optional<QString> &writeId) {
    FileThread::pool().start([known, writeId] { *known = writeId; });
}

ConversationInput joined(const ConversationInput &first, const ConversationInput &second) {
    if (first.text.isEmpty() && second.isEmpty())
        return first;
    ConversationInput both = first.isEmpty() ? second : first;
    both.text = first.text;
    if (!second.text.isEmpty())
        both.text += (first.text.isEmpty() ? QString() : QStringLiteral("\n")) + second.text;
    return both;
}

} // namespace

KeptTexts::KeptTexts(KeptTextStore store, Clock &clock, QObject *parent)
    : QObject(parent)
    , m_store(std::move(store))
    , m_clock(clock) {}

KeptTexts::~KeptTexts() {
    m_stop.request_stop();
    if (const auto writes = dirty(true); !writes.isEmpty())
        FileThread::pool().start([store = m_store, writes] { (void)KeptTextWrite::run(store, writes); });
}

// The texts

KeptText &KeptTexts::at(const QString &id) {
    auto found = m_boxes.find(id);
    if (found == m_boxes.end()) {
        found = m_boxes.insert(id, {});
        found->keptAs = id.isEmpty() ? QUuid::createUuid().toString(QUuid::WithoutBraces) : id;
        found->account = m_account;
        found->restored = m_restoredAccount == m_account;
    }
    return *found;
}

KeptText *KeptTexts::find(const std::optional<QString> &account, const QString &id) {
    auto &boxes = account == m_account ? m_boxes : m_left[account.value_or(QString())];
    const auto found = boxes.find(id);
    return found == boxes.end() ? nullptr : &*found;
}

void KeptTexts::describe(const Place &place) {
    at(place.id).place = place;
}

void KeptTexts::change(const QString &id, const std::function<void(ConversationInput &)> &change) {
    KeptText &box = at(id);
    box.place.id = id;
    change(box.input);
    box.changedAt = m_clock.now();
    box.checkpoint.compare(box.input);
    if (!m_keepWaits && box.isDirty())
        detach(keepAfterPause(), "keeping what is typed");
}

void KeptTexts::move(const QString &from, const QString &to) {
    KeptText &before = at(from);
    if (before.input.isEmpty())
        return;
    const auto changedAt = before.changedAt;
    const auto input = std::exchange(before.input, {});
    before.checkpoint.compare(before.input);
    KeptText &now = at(to);
    now.input = input;
    now.changedAt = changedAt;
    now.checkpoint.compare(now.input);
}

void KeptTexts::hold(const QString &id, quint64 ticket) {
    KeptText &box = at(id);
    auto held = box.held.value_or(KeptText::Held());
    held.ticket = ticket;
    held.main |= !box.theirs;
    if (!box.copy.id.isEmpty())
        held.copies.push_back(std::exchange(box.copy, {}));
    box.held = held;
    box.givenUp.reset();
    box.input = {};
    // What could not be kept is no input any more; how its message stands is told with that.
    box.error.reset();
    box.checkpoint.compare(box.input);
    // Ours is sent, so that what the other window wrote is what is left to be sent.
    if (box.theirs) {
        box.input = box.theirs->input;
        goOnFrom(box, Entry(*box.theirs));
    }
    Q_EMIT replaced(id);
}

void KeptTexts::release(const QString &id, quint64 ticket) {
    const auto releaseIn = [&](Boxes &boxes) {
        const auto box = boxes.find(id);
        if (box == boxes.end() || !box->held || box->held->ticket > ticket)
            return;
        const auto held = *std::exchange(box->held, std::nullopt);
        for (const Copy &copy : held.copies)
            removeCopy(*box, copy);
        // What the file holds is not what stands here, whatever was heard of it.
        box->checkpoint.edited |= held.main;
    };
    releaseIn(m_boxes);
    for (Boxes &boxes : m_left)
        releaseIn(boxes);
    keepSoon();
}

void KeptTexts::open(const std::optional<QString> &account, bool samePerson) {
    const Boxes carried = samePerson && !m_account ? std::exchange(m_boxes, {}) : Boxes();
    const auto writes = dirty(true);
    // What the disk has not taken yet stays with its owner, out of sight of anybody else.
    m_boxes.removeIf([](Boxes::iterator box) { return !box->isDirty() && !box->held; });
    if (m_account && !m_boxes.isEmpty())
        m_left.insert(*m_account, m_boxes);
    m_boxes = account ? m_left.take(*account) : Boxes();
    ++m_generation;
    m_account = account;
    m_restoredAccount.reset();
    m_unreadable.reset();
    for (auto &&[id, before] : carried.asKeyValueRange()) {
        KeptText &now = at(id);
        now.place = before.place;
        now.changedAt = before.changedAt;
        now.input = joined(now.input, before.input);
        now.checkpoint.compare(now.input);
    }
    if (!writes.isEmpty())
        detach(untilKept(keepWritten(writes)), "keeping what is typed");
    if (account)
        detach(carried.isEmpty() ? restore() : untilKept(keep()), "reading what was typed");
    const QPointer self(this);
    Q_EMIT restored();
    if (self)
        Q_EMIT stateChanged();
}

// Onto the disk

void KeptTexts::collect(Boxes &boxes, bool last, QList<KeptTextWrite> &writes) const {
    for (auto &&[id, box] : boxes.asKeyValueRange()) {
        if (!box.isDirty() || !(box.restored || last))
            continue;
        KeptTextWrite write;
        write.account = box.account;
        write.box = id;
        write.copy = box.isBeside();
        if (write.copy && box.copy.id.isEmpty()) {
            box.copy.id = ConversationInputDraftStore::copyId(box.keptAs);
            box.copy.claim = KeptTextClaim::take(box.copy.id);
        }
        write.entry.id = write.copy ? box.copy.id : box.keptAs;
        write.entry.title = box.place.title;
        write.entry.cloudRevision = box.place.cloudRevision;
        write.entry.input = box.input;
        write.now = m_clock.now();
        write.writeId = write.copy ? box.copy.writeId : box.writeId;
        writes.push_back(write);
        ++box.writes;
    }
}

QList<KeptTextWrite> KeptTexts::dirty(bool last) {
    QList<KeptTextWrite> writes;
    collect(m_boxes, last, writes);
    for (Boxes &boxes : m_left)
        collect(boxes, last, writes);
    // What moves from one box to another is written before it is removed.
    std::ranges::partition(writes, [](const KeptTextWrite &write) { return !write.entry.input.isEmpty(); });
    return writes;
}

bool KeptTexts::isKept() const {
    const auto clean = [](const Boxes &boxes) {
        return std::ranges::none_of(boxes, &KeptText::isDirty);
    };
    return clean(m_boxes) && std::ranges::all_of(m_left, clean);
}

QCoro::Task<bool> KeptTexts::keep() {
    const QPointer self(this);
    // What is being written need not be written twice.
    while (self && m_writing > 0)
        co_await filesSettled();
    if (self && m_restoredAccount != m_account)
        co_await restore();
    if (!self)
        co_return false;
    if (co_await keepWritten(dirty()))
        co_return true;
    // What met another window's text is kept beside it.
    if (!self)
        co_return false;
    auto beside = dirty();
    beside.removeIf([](const KeptTextWrite &write) { return !write.copy; });
    co_return co_await keepWritten(std::move(beside)) && self &&isKept();
}

QCoro::Task<bool> KeptTexts::keepWritten(QList<KeptTextWrite> writes) {
    const QPointer self(this);
    if (writes.isEmpty())
        co_return true;
    ++m_writing;
    const auto done = co_await PoolAwaiter(
        [store = m_store, writes = std::move(writes)]() mutable {
            return KeptTextWrite::run(store, std::move(writes));
        },
        &FileThread::pool());
    const bool all = std::ranges::none_of(done, [](const KeptTextWrite &write) { return write.error.has_value(); });
    if (!self)
        co_return all;
    --m_writing;
    QStringList ids;
    for (const KeptTextWrite &write : done) {
        ids.push_back(write.box);
        if (auto *box = find(write.account, write.box))
            settle(*box, write);
    }
    m_left.removeIf([](QHash<QString, Boxes>::iterator left) {
        return std::ranges::none_of(*left, [](const KeptText &box) { return box.isDirty() || box.held; });
    });
    Q_EMIT stateChanged();
    if (self)
        Q_EMIT written(ids);
    co_return all;
}

void KeptTexts::settle(KeptText &box, const KeptTextWrite &write) {
    box.error = write.error;
    if (!write.error && !write.copy)
        box.draftWriteId = write.written;
    if (!write.error && write.copy == box.isBeside()) {
        box.checkpoint.settle(write.entry.input, box.input);
        if (!write.copy)
            removeCopy(box, std::exchange(box.copy, {}));
    }
    if (!write.theirs)
        return;
    if (write.theirs->input == box.input) {
        goOnFrom(box, *write.theirs);
        return;
    }
    box.theirs = write.theirs;
    box.checkpoint.edited = true;
}

void KeptTexts::goOnFrom(KeptText &box, const Entry &entry) {
    box.draftWriteId = entry.writeId;
    box.error.reset();
    box.theirs.reset();
    box.checkpoint.settle(entry.input, box.input);
    setKnown(box.writeId, entry.writeId);
    if (!box.checkpoint.edited)
        removeCopy(box, std::exchange(box.copy, {}));
}

void KeptTexts::removeCopy(const KeptText &box, const Copy &copy) {
    if (copy.id.isEmpty())
        return;
    Entry nothing;
    nothing.id = copy.id;
    // Without its claim, which is this thread's.
    FileThread::pool().start([store = m_store, account = box.account.value_or(QString()), nothing, known = copy.writeId,
                              now = m_clock.now()] {
        if (const auto removed = store.save(account, nothing, *known, now))
            *known = *removed;
    });
}

QCoro::Task<> KeptTexts::keepAfterPause() {
    const QPointer self(this);
    m_keepWaits = true;
    co_await m_clock.sleep(typingPause, m_stop.get_token());
    if (!self)
        co_return;
    m_keepWaits = false;
    co_await untilKept(keep());
}

QCoro::Task<> KeptTexts::untilKept(QCoro::Task<bool> attempt) {
    const QPointer self(this);
    const bool kept = co_await attempt;
    if (self && !kept && !m_retryWaits)
        detach(retry(), "keeping what is typed");
}

QCoro::Task<> KeptTexts::retry() {
    const QPointer self(this);
    // Beside what is typed meanwhile, which need not wait for what is refused.
    m_retryWaits = true;
    for (bool kept = false; !kept;) {
        co_await m_clock.sleep(retryPause, m_stop.get_token());
        if (!self || m_stop.stop_requested())
            co_return;
        kept = co_await keep();
        if (!self)
            co_return;
    }
    m_retryWaits = false;
}

void KeptTexts::keepSoon() {
    detach(untilKept(keep()), "keeping what is typed");
}

// From the disk

QCoro::Task<> KeptTexts::restore() {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto listing =
        co_await PoolAwaiter([store = m_store, account = m_account.value_or(QString())] { return store.list(account); },
                             &FileThread::pool());
    if (!self || m_generation != generation || m_restoredAccount == m_account)
        co_return;
    m_restoredAccount = m_account;
    m_unreadable = listing ? std::optional(listing->unreadable) : std::nullopt;
    const auto entries = listing ? listing->entries : QList<Entry>();
    const auto isCopy = [](const Entry &entry) {
        return ConversationInputDraftStore::originalId(entry.id) != entry.id;
    };
    for (const Entry &entry : entries) {
        if (!isCopy(entry))
            adopt(entry.id, entry);
    }
    for (const Entry &entry : entries) {
        if (isCopy(entry))
            adoptCopy(entry);
    }
    for (KeptText &box : m_boxes)
        box.restored = true;
    Q_EMIT restored();
    if (self)
        Q_EMIT stateChanged();
}

void KeptTexts::look(const QString &id) {
    detach(readAgain(id), "reading what was typed");
}

QCoro::Task<> KeptTexts::readAgain(QString id) {
    const QPointer self(this);
    if (id.isEmpty() || !m_account || m_restoredAccount != m_account)
        co_return;
    const auto generation = m_generation;
    const auto writes = at(id).writes;
    const auto read = co_await PoolAwaiter(
        [store = m_store, account = *m_account, id] { return store.read(account, id); }, &FileThread::pool());
    // What has been written since is newer than what was read.
    if (!self || m_generation != generation || !m_boxes.contains(id) || at(id).writes != writes)
        co_return;
    if (read)
        adopt(id, *read);
    else
        at(id).error = read.error();
    Q_EMIT replaced(id);
    if (self)
        Q_EMIT stateChanged();
}

void KeptTexts::adopt(const QString &id, const std::optional<Entry> &entry) {
    KeptText &box = at(id);
    const bool first = !std::exchange(box.restored, true);
    if (entry && box.place.id.isEmpty())
        box.place = {entry->id, entry->title, entry->cloudRevision, false};
    if (box.theirs || (!entry && (first || !box.draftWriteId)) ||
        (entry && !first && entry->writeId == box.draftWriteId))
        return;
    const Entry there = entry.value_or(Entry());
    if (!box.checkpoint.edited || (box.input.isEmpty() && !first)) {
        box.input = there.input;
    } else if (first) {
        // Typed before the disk had answered: both are kept.
        box.input = joined(there.input, box.input);
    } else if (entry && entry->input != box.input) {
        box.theirs = entry;
        box.error = StoreError::changedElsewhere;
        return;
    }
    if (!box.checkpoint.edited)
        box.changedAt = QDateTime::fromString(there.updatedAt, Qt::ISODateWithMs);
    goOnFrom(box, there);
}

void KeptTexts::adoptCopy(const Entry &entry) {
    const QString id = ConversationInputDraftStore::originalId(entry.id);
    KeptText &box = at(id);
    if (box.place.id.isEmpty())
        box.place = {id, entry.title, entry.cloudRevision, false};
    // What was typed here meanwhile has a copy of its own, and this one waits for its turn.
    if (box.checkpoint.edited || box.theirs || !box.copy.id.isEmpty())
        return;
    const auto claim = KeptTextClaim::take(entry.id);
    if (!claim)
        return;
    box.copy.id = entry.id;
    box.copy.claim = claim;
    setKnown(box.copy.writeId, entry.writeId);
    if (box.draftWriteId && box.input != entry.input) {
        box.theirs = Entry();
        box.theirs->id = id;
        box.theirs->writeId = box.draftWriteId;
        box.theirs->input = box.input;
        box.error = StoreError::changedElsewhere;
    }
    box.input = entry.input;
    box.changedAt = QDateTime::fromString(entry.updatedAt, Qt::ISODateWithMs);
    box.theirs ? box.checkpoint.settle(entry.input, box.input) : box.checkpoint.compare(box.input);
    if (!box.theirs && !box.checkpoint.edited)
        removeCopy(box, std::exchange(box.copy, {}));
}

// Two windows

QString KeptTexts::error(const QString &id) const {
    const auto box = m_boxes.find(id);
    if (box == m_boxes.end() || !(box->error || box->theirs))
        return {};
    return ConversationInputDraftStore::describe(box->error.value_or(StoreError::changedElsewhere));
}

void KeptTexts::resolve(const QString &id, const ConversationInput &input) {
    KeptText &box = at(id);
    if (!box.theirs)
        return;
    const Entry theirs = *box.theirs;
    box.givenUp = input == theirs.input ? box.input : theirs.input;
    box.input = input;
    goOnFrom(box, theirs);
    const QPointer self(this);
    Q_EMIT replaced(id);
    if (self)
        Q_EMIT stateChanged();
    if (self)
        keepSoon();
}

void KeptTexts::takeBack(const QString &id) {
    KeptText &box = at(id);
    if (!box.givenUp || box.theirs)
        return;
    change(id, [&](ConversationInput &input) { std::swap(input, *box.givenUp); });
    const QPointer self(this);
    Q_EMIT replaced(id);
    if (self)
        Q_EMIT stateChanged();
}

void KeptTexts::forgetGivenUp(const QString &id) {
    at(id).givenUp.reset();
    Q_EMIT stateChanged();
}

} // namespace lmp
