#include "screens/chat/ComposerInputs.h"

#include "core/Detach.h"
#include "core/PoolAwaiter.h"

#include <QPointer>
#include <QSet>
#include <QUuid>

#include <algorithm>

namespace lmp {

using StoreError = ConversationInputDraftStore::StoreError;
using Entry = ComposerBox::Entry;

namespace {

/// The fresh conversations that some window has open: their input is not left behind.
QSet<QString> &freshInUse() {
    static QSet<QString> ids;
    return ids;
}

} // namespace

struct ComposerInputs::Write {
    std::optional<QString> account;
    QString box; ///< whose input it is
    bool copy = false;
    Entry entry;
    QDateTime now;
    ComposerBox::WriteId writeId;

    // What became of it.
    std::optional<QString> written;
    std::optional<StoreError> error;
    std::optional<Entry> theirs;
};

ComposerInputs::ComposerInputs(ConversationInputDraftStore store, Clock &clock, QObject *parent)
    : QObject(parent)
    , m_store(std::move(store))
    , m_clock(clock) {
    m_pool.setMaxThreadCount(1);
}

ComposerInputs::~ComposerInputs() {
    m_stop.request_stop();
    freshInUse().remove(m_id);
    m_pool.start([store = m_store, writes = dirty(true)] { (void)written(store, writes); });
    m_pool.waitForDone();
}

// The boxes

ComposerBox &ComposerInputs::box(const QString &id) {
    auto found = m_boxes.find(id);
    if (found == m_boxes.end()) {
        found = m_boxes.insert(id, {});
        found->keptAs = id.isEmpty() ? QUuid::createUuid().toString(QUuid::WithoutBraces) : id;
        found->account = m_account;
        found->restored = m_restoredAccount == m_account;
    }
    return *found;
}

ComposerBox *ComposerInputs::find(const std::optional<QString> &account, const QString &id) {
    auto &boxes = account == m_account ? m_boxes : m_left[account.value_or(QString())];
    const auto found = boxes.find(id);
    return found == boxes.end() ? nullptr : &*found;
}

void ComposerInputs::moveTo(const Place &place, bool carry) {
    if (place.id == m_id) {
        describe(place);
        return;
    }
    freshInUse().remove(m_id);
    ConversationInput carried;
    if (carry) {
        ComposerBox &before = box(m_id);
        carried = std::exchange(before.input, {});
        before.checkpoint.compare(before.input);
    }
    if (m_boxes.value(m_id).place.incognito)
        m_boxes.remove(m_id);
    m_id = place.id;
    if (place.isFresh() && !place.id.isEmpty())
        freshInUse().insert(place.id);
    ComposerBox &now = box(m_id);
    now.place = place;
    if (!carried.isEmpty()) {
        now.input = carried;
        now.checkpoint.compare(now.input);
    }
    takeOver();
    Q_EMIT replaced();
    Q_EMIT stateChanged();
    detach(keepNow(), "keeping what is typed");
    if (!place.incognito)
        detach(readAgain(place.id), "reading what was typed");
}

void ComposerInputs::describe(const Place &place) {
    if (place.id != m_id)
        return;
    box(m_id).place = place;
    if (!place.isFresh())
        freshInUse().remove(m_id);
}

void ComposerInputs::takeOver() {
    ComposerBox &now = box(m_id);
    if (m_id.isEmpty() || !now.place.isFresh() || now.place.incognito || !now.input.isEmpty())
        return;
    for (auto left = m_boxes.begin(); left != m_boxes.end(); ++left) {
        if (left.key() == m_id || !left->place.isFresh() || left->place.incognito || left->theirs ||
            freshInUse().contains(left.key()) || left->input.isEmpty())
            continue;
        now.input = std::exchange(left->input, {});
        now.checkpoint.compare(now.input);
        left->checkpoint.compare(left->input);
        return;
    }
}

void ComposerInputs::change(const std::function<void(ConversationInput &)> &change) {
    ComposerBox &now = box(m_id);
    now.place.id = m_id;
    change(now.input);
    now.checkpoint.compare(now.input);
    if (!m_keepWaits && now.isDirty())
        detach(keepAfterPause(), "keeping what is typed");
}

void ComposerInputs::setText(const QString &text) {
    change([&](ConversationInput &input) { input.text = text; });
}

void ComposerInputs::setRetryMessage(std::optional<QString> messageId) {
    change([&](ConversationInput &input) { input.retryMessageId = std::move(messageId); });
}

void ComposerInputs::clear() {
    change([](ConversationInput &input) { input = {}; });
    Q_EMIT replaced();
    detach(keepNow(), "keeping what is typed");
}

void ComposerInputs::open(const std::optional<QString> &account) {
    const auto writes = dirty(true);
    freshInUse().remove(m_id);
    // What the disk has not taken yet stays with its owner, out of sight of anybody else.
    m_boxes.removeIf([](Boxes::iterator box) { return !box->isDirty(); });
    if (m_account && !m_boxes.isEmpty())
        m_left.insert(*m_account, m_boxes);
    m_boxes = account ? m_left.take(*account) : Boxes();
    m_id.clear();
    ++m_generation;
    m_account = account;
    m_restoredAccount.reset();
    Q_EMIT replaced();
    Q_EMIT stateChanged();
    detach(putAway(writes), "keeping what is typed");
    if (account)
        detach(restore(), "reading what was typed");
}

// Onto the disk

void ComposerInputs::collect(Boxes &boxes, bool last, QList<Write> &writes) const {
    for (auto &&[id, box] : boxes.asKeyValueRange()) {
        if (!box.isDirty() || !(box.restored || last))
            continue;
        Write write;
        write.account = box.account;
        write.box = id;
        write.copy = box.isBeside();
        write.entry.id = write.copy ? ConversationInputDraftStore::copyId(box.keptAs) : box.keptAs;
        write.entry.title = box.place.title;
        write.entry.cloudRevision = box.place.cloudRevision;
        write.entry.input = box.input;
        write.now = m_clock.now();
        write.writeId = write.copy ? box.copyWriteId : box.writeId;
        writes.push_back(write);
        box.copied |= write.copy;
        ++box.writes;
    }
}

QList<ComposerInputs::Write> ComposerInputs::dirty(bool last) {
    QList<Write> writes;
    collect(m_boxes, last, writes);
    for (Boxes &boxes : m_left)
        collect(boxes, last, writes);
    // What moves from one box to another is written before it is removed.
    std::ranges::partition(writes, [](const Write &write) { return !write.entry.input.isEmpty(); });
    return writes;
}

QList<ComposerInputs::Write> ComposerInputs::written(const ConversationInputDraftStore &store, QList<Write> writes) {
    QHash<QString, StoreError> refused;
    for (Write &write : writes) {
        const QString account = write.account.value_or(QString());
        // What is removed may be what could not be written elsewhere; a disk without room still removes.
        if (write.entry.input.isEmpty() && refused.contains(account)) {
            write.error = refused.value(account);
            continue;
        }
        const auto saved = store.save(account, write.entry, *write.writeId, write.now);
        if (saved) {
            write.written = *write.writeId = *saved;
            continue;
        }
        // An empty box has nothing that could be lost, and leaves the other window's input alone.
        if (saved.error() == StoreError::changedElsewhere && write.entry.input.isEmpty())
            continue;
        write.error = saved.error();
        if (saved.error() != StoreError::changedElsewhere)
            refused.insert(account, saved.error());
        else if (!write.copy)
            write.theirs = store.read(account, write.entry.id).value_or(std::nullopt);
    }
    return writes;
}

bool ComposerInputs::isKept() const {
    const auto clean = [](const Boxes &boxes) {
        return std::ranges::none_of(boxes, &ComposerBox::isDirty);
    };
    return clean(m_boxes) && std::ranges::all_of(m_left, clean);
}

QCoro::Task<bool> ComposerInputs::keep() {
    const QPointer self(this);
    if (m_restoredAccount != m_account)
        co_await restore();
    if (!self)
        co_return false;
    if (co_await keepWritten(dirty()))
        co_return true;
    // What met another window's input is kept beside it.
    if (!self)
        co_return false;
    auto beside = dirty();
    beside.removeIf([](const Write &write) { return !write.copy; });
    co_return co_await keepWritten(std::move(beside)) && self &&isKept();
}

QCoro::Task<bool> ComposerInputs::keepWritten(QList<Write> writes) {
    const QPointer self(this);
    if (writes.isEmpty())
        co_return true;
    const auto done = co_await PoolAwaiter(
        [store = m_store, writes = std::move(writes)]() mutable { return written(store, std::move(writes)); }, &m_pool);
    const bool all = std::ranges::none_of(done, [](const Write &write) { return write.error.has_value(); });
    if (!self)
        co_return all;
    for (const Write &write : done) {
        if (auto *box = find(write.account, write.box))
            settle(*box, write);
    }
    m_left.removeIf(
        [](QHash<QString, Boxes>::iterator left) { return std::ranges::none_of(*left, &ComposerBox::isDirty); });
    Q_EMIT stateChanged();
    if (self && std::ranges::any_of(done, [this](const Write &write) { return write.box != m_id; }))
        Q_EMIT kept();
    co_return all;
}

void ComposerInputs::settle(ComposerBox &box, const Write &write) {
    box.error = write.error;
    if (!write.error && !write.copy)
        box.draftWriteId = write.written;
    if (!write.error && write.copy == box.isBeside()) {
        box.checkpoint.settle(write.entry.input, box.input);
        if (!write.copy)
            removeCopy(box);
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

void ComposerInputs::goOnFrom(ComposerBox &box, const Entry &entry) {
    box.draftWriteId = entry.writeId;
    box.error.reset();
    box.theirs.reset();
    box.checkpoint.settle(entry.input, box.input);
    m_pool.start([known = box.writeId, writeId = entry.writeId] { *known = writeId; });
    if (!box.checkpoint.edited)
        removeCopy(box);
}

void ComposerInputs::removeCopy(ComposerBox &box) {
    if (!std::exchange(box.copied, false))
        return;
    Entry nothing;
    nothing.id = ConversationInputDraftStore::copyId(box.keptAs);
    m_pool.start([store = m_store, account = box.account.value_or(QString()), nothing, known = box.copyWriteId,
                  now = m_clock.now()] {
        if (const auto removed = store.save(account, nothing, *known, now))
            *known = *removed;
    });
}

QCoro::Task<> ComposerInputs::keepAfterPause() {
    const QPointer self(this);
    m_keepWaits = true;
    for (auto pause = typingPause; co_await m_clock.sleep(pause, m_stop.get_token()); pause = retryPause) {
        if (!self)
            co_return;
        m_keepWaits = false;
        const bool kept = co_await keep();
        if (!self || kept || m_keepWaits)
            co_return;
        m_keepWaits = true;
    }
}

QCoro::Task<> ComposerInputs::keepNow() {
    const QPointer self(this);
    const bool kept = co_await keep();
    if (self && !kept && !m_keepWaits)
        detach(keepAfterPause(), "keeping what is typed");
}

QCoro::Task<> ComposerInputs::putAway(QList<Write> writes) {
    const QPointer self(this);
    const bool kept = co_await keepWritten(std::move(writes));
    if (self && !kept && !m_keepWaits)
        detach(keepAfterPause(), "keeping what is typed");
}

// From the disk

QCoro::Task<> ComposerInputs::restore() {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto listing = co_await PoolAwaiter(
        [store = m_store, account = m_account.value_or(QString())] { return store.list(account); }, &m_pool);
    if (!self || m_generation != generation || m_restoredAccount == m_account)
        co_return;
    m_restoredAccount = m_account;
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
    for (ComposerBox &box : m_boxes)
        box.restored = true;
    takeOver();
    Q_EMIT replaced();
    Q_EMIT stateChanged();
    // A single file that cannot be read is told where it belongs.
    if (self && !m_id.isEmpty() && (!listing || listing->unreadable > 0))
        detach(readAgain(m_id), "reading what was typed");
}

QCoro::Task<> ComposerInputs::readAgain(QString id) {
    const QPointer self(this);
    if (id.isEmpty() || !m_account || m_restoredAccount != m_account)
        co_return;
    const auto generation = m_generation;
    const auto writes = box(id).writes;
    const auto read =
        co_await PoolAwaiter([store = m_store, account = *m_account, id] { return store.read(account, id); }, &m_pool);
    // What has been written since is newer than what was read.
    if (!self || m_generation != generation || !m_boxes.contains(id) || box(id).writes != writes)
        co_return;
    if (read)
        adopt(id, *read);
    else
        box(id).error = read.error();
    if (id == m_id)
        Q_EMIT replaced();
    if (self)
        Q_EMIT stateChanged();
}

void ComposerInputs::adopt(const QString &id, const std::optional<Entry> &entry) {
    ComposerBox &box = this->box(id);
    const bool first = !std::exchange(box.restored, true);
    if (entry && box.place.id.isEmpty())
        box.place = {entry->id, entry->title, entry->cloudRevision, false};
    if (box.theirs || (!entry && (first || !box.draftWriteId)) ||
        (entry && !first && entry->writeId == box.draftWriteId))
        return;
    Entry there = entry.value_or(Entry());
    if (first && box.checkpoint.edited) {
        // Typed before the disk had answered: both are kept.
        const QString typed = box.input.text;
        box.input = there.input;
        if (!typed.isEmpty())
            box.input.text += (box.input.text.isEmpty() ? QString() : QStringLiteral("\n")) + typed;
    } else if (!box.checkpoint.edited) {
        box.input = there.input;
    } else if (entry && entry->input != box.input) {
        box.theirs = entry;
        box.error = StoreError::changedElsewhere;
        return;
    }
    goOnFrom(box, there);
}

void ComposerInputs::adoptCopy(const Entry &copy) {
    const QString id = ConversationInputDraftStore::originalId(copy.id);
    ComposerBox &box = this->box(id);
    if (box.place.id.isEmpty())
        box.place = {id, copy.title, copy.cloudRevision, false};
    // Typed in this window just now, and the next write asks about it.
    if (box.checkpoint.edited || box.theirs)
        return;
    box.copied = true;
    m_pool.start([known = box.copyWriteId, writeId = copy.writeId] { *known = writeId; });
    if (box.draftWriteId && box.input != copy.input) {
        box.theirs = Entry();
        box.theirs->id = id;
        box.theirs->writeId = box.draftWriteId;
        box.theirs->input = box.input;
        box.error = StoreError::changedElsewhere;
    }
    const bool asks = box.theirs.has_value();
    box.input = copy.input;
    asks ? box.checkpoint.settle(copy.input, box.input) : box.checkpoint.compare(box.input);
}

// Two windows

QString ComposerInputs::error() const {
    const auto box = m_boxes.find(m_id);
    if (box == m_boxes.end() || !(box->error || box->theirs))
        return {};
    return ConversationInputDraftStore::describe(box->theirs ? StoreError::changedElsewhere : *box->error);
}

void ComposerInputs::keepMine() {
    ComposerBox &now = box(m_id);
    if (!now.theirs)
        return;
    goOnFrom(now, Entry(*now.theirs));
    Q_EMIT stateChanged();
    detach(keepNow(), "keeping what is typed");
}

void ComposerInputs::takeTheirs() {
    ComposerBox &now = box(m_id);
    if (!now.theirs)
        return;
    now.input = now.theirs->input;
    goOnFrom(now, Entry(*now.theirs));
    Q_EMIT replaced();
    Q_EMIT stateChanged();
}

} // namespace lmp
