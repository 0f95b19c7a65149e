#include "screens/chat/ComposerInputs.h"

#include "core/Detach.h"
#include "core/PoolAwaiter.h"

#include <QPointer>
#include <QUuid>

#include <algorithm>

namespace lmp {

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds typingPause = 2s;

/// The fresh conversations that some window has open: their input is not left behind.
QSet<QString> &freshInUse() {
    static QSet<QString> ids;
    return ids;
}

} // namespace

ComposerInputs::ComposerInputs(ComposerInputFile files, Clock &clock, QObject *parent)
    : QObject(parent)
    , m_files(std::move(files))
    , m_clock(clock) {
    m_pool.setMaxThreadCount(1);
}

ComposerInputs::~ComposerInputs() {
    m_stop.request_stop();
    freshInUse().remove(m_id);
    open({});
    m_pool.waitForDone();
}

void ComposerInputs::moveTo(const Place &place) {
    if (place.id == m_id) {
        describe(place);
        return;
    }
    freshInUse().remove(m_id);
    if (m_boxes.value(m_id).place.incognito)
        m_boxes.remove(m_id);
    m_id = place.id;
    if (place.isFresh() && !place.id.isEmpty())
        freshInUse().insert(place.id);
    m_boxes[m_id].place = place;
    takeOver();
    Q_EMIT replaced();
    detach(keepNow(), "keeping what is typed");
}

void ComposerInputs::describe(const Place &place) {
    if (place.id != m_id)
        return;
    m_boxes[m_id].place = place;
    if (!place.isFresh())
        freshInUse().remove(m_id);
}

void ComposerInputs::takeOver() {
    Box &box = m_boxes[m_id];
    if (m_id.isEmpty() || !box.place.isFresh() || box.place.incognito || !ComposerInputFile::isEmpty(box.input))
        return;
    for (auto left = m_boxes.begin(); left != m_boxes.end(); ++left) {
        if (left.key() == m_id || !left->place.isFresh() || left->place.incognito ||
            freshInUse().contains(left.key()) || ComposerInputFile::isEmpty(left->input))
            continue;
        box.input = std::exchange(left->input, {});
        ++box.edits;
        ++left->edits;
        return;
    }
}

void ComposerInputs::change(const std::function<void(ConversationInput &)> &change) {
    Box &box = m_boxes[m_id];
    box.place.id = m_id;
    const auto before = box.input;
    change(box.input);
    if (box.input == before)
        return;
    ++box.edits;
    if (!m_keepWaits && box.isDirty())
        detach(keepAfterPause(), "keeping what is typed");
}

QCoro::Task<> ComposerInputs::keepAfterPause() {
    const QPointer self(this);
    m_keepWaits = true;
    co_await m_clock.sleep(typingPause, m_stop.get_token());
    if (!self)
        co_return;
    m_keepWaits = false;
    co_await keep();
}

QCoro::Task<> ComposerInputs::keepNow() {
    co_await keep();
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

QList<ComposerInputs::Write> ComposerInputs::dirty() const {
    QList<Write> writes;
    for (const auto &[id, box] : m_boxes.asKeyValueRange()) {
        if (!box.isDirty() || (id.isEmpty() && ComposerInputFile::isEmpty(box.input)))
            continue;
        const Write write{.entry = {.id = id,
                                    .writeId = QUuid::createUuid().toString(QUuid::WithoutBraces),
                                    .title = box.place.title,
                                    .cloudRevision = box.place.cloudRevision,
                                    .updatedAt = m_clock.now().toUTC().toString(Qt::ISODateWithMs),
                                    .input = box.input},
                          .edits = box.edits};
        writes.push_back(write);
    }
    // What moves from one box to another is written before it is removed.
    std::ranges::partition(writes, [](const Write &write) { return !ComposerInputFile::isEmpty(write.entry.input); });
    return writes;
}

void ComposerInputs::open(const std::optional<QString> &account) {
    if (const auto writes = dirty(); !writes.isEmpty()) {
        m_pool.start([files = m_files, owner = m_account, writes] {
            for (const Write &write : writes)
                (void)files.save(owner, write.entry);
        });
    }
    freshInUse().remove(m_id);
    m_boxes.clear();
    m_id.clear();
    ++m_generation;
    m_account = account;
    Q_EMIT replaced();
    if (account)
        detach(read(), "reading what was typed");
}

bool ComposerInputs::isKept() const {
    return dirty().isEmpty();
}

QCoro::Task<bool> ComposerInputs::keep() {
    const QPointer self(this);
    const auto generation = m_generation;
    auto writes = dirty();
    if (writes.isEmpty())
        co_return true;
    const auto done = co_await PoolAwaiter(
        [files = m_files, owner = m_account, writes] {
            auto tried = writes;
            for (Write &write : tried)
                write.done = files.save(owner, write.entry).has_value();
            return tried;
        },
        &m_pool);
    const bool all = std::ranges::all_of(done, &Write::done);
    if (!self || m_generation != generation)
        co_return all;
    for (const Write &write : done) {
        if (const auto box = m_boxes.find(write.entry.id); write.done && box != m_boxes.end())
            box->keptEdits = std::max(box->keptEdits, write.edits);
    }
    if (std::ranges::any_of(done, [this](const Write &write) { return write.entry.id != m_id; }))
        Q_EMIT kept();
    co_return all;
}

QCoro::Task<> ComposerInputs::read() {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto listing = co_await PoolAwaiter(
        [files = m_files, owner = m_account] { return files.list(owner).value_or(ComposerInputFile::Listing()); },
        &m_pool);
    if (self && m_generation == generation)
        adopt(listing);
}

void ComposerInputs::adopt(const ComposerInputFile::Listing &listing) {
    for (const auto &entry : listing.entries) {
        Box &box = m_boxes[entry.id];
        const Place stored{entry.id, entry.title, entry.cloudRevision, false};
        if (box.place.id.isEmpty())
            box.place = stored;
        if (box.input == entry.input)
            continue;
        // Typed before the disk had answered: both are kept.
        const QString typed = box.input.text;
        box.input = entry.input;
        if (!typed.isEmpty()) {
            box.input.text += u'\n' + typed;
            ++box.edits;
        }
    }
    takeOver();
    Q_EMIT replaced();
}

} // namespace lmp
