#include "screens/memory/MemoryInputs.h"

#include "core/Detach.h"
#include "core/PoolAwaiter.h"

#include <QPointer>
#include <QUuid>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

MemoryInputs::MemoryInputs(ApplicationSupport support, ConversationAccount account, Clock &clock, QObject *parent)
    : QObject(parent)
    , m_folder(std::move(support), u"MemoryInput/v1"_s)
    , m_who(std::move(account))
    , m_clock(clock)
    , m_account(m_who.current()) {
    m_pool.setMaxThreadCount(1);
    if (m_account)
        detach(read(), "reading what was typed about memories");
}

MemoryInputs::~MemoryInputs() {
    m_stop.request_stop();
    if (const auto writes = dirty(); m_account && !writes.isEmpty())
        m_pool.start([folder = m_folder, account = *m_account, writes] { (void)save(folder, account, writes); });
    m_pool.waitForDone();
}

QString MemoryInputs::text(const QString &key) const {
    return m_boxes.value(key).text;
}

QSet<QString> MemoryInputs::keys() const {
    QSet<QString> keys;
    for (const auto &[key, box] : m_boxes.asKeyValueRange()) {
        if (!box.text.isEmpty())
            keys.insert(key);
    }
    return keys;
}

void MemoryInputs::setText(const QString &key, const QString &text) {
    Box &box = m_boxes[key];
    if (box.text == text)
        return;
    const bool another = box.text.isEmpty() != text.isEmpty();
    box.text = text;
    ++box.edits;
    if (m_account && !m_keepWaits)
        detach(keepAfterPause(), "keeping what is typed about memories");
    if (another)
        Q_EMIT keysChanged();
}

QCoro::Task<> MemoryInputs::keepAfterPause() {
    const QPointer self(this);
    m_keepWaits = true;
    co_await m_clock.sleep(typingPause, m_stop.get_token());
    if (!self)
        co_return;
    m_keepWaits = false;
    co_await keep();
}

QList<MemoryInputs::Write> MemoryInputs::dirty() const {
    QList<Write> writes;
    for (const auto &[key, box] : m_boxes.asKeyValueRange()) {
        if (box.edits == box.keptEdits)
            continue;
        const Write write{.entry = {.id = key,
                                    .writeId = QUuid::createUuid().toString(QUuid::WithoutBraces),
                                    .updatedAt = m_clock.now().toUTC().toString(Qt::ISODateWithMs),
                                    .text = box.text},
                          .known = box.writeId,
                          .edits = box.edits};
        writes.push_back(write);
    }
    return writes;
}

QList<MemoryInputs::Write> MemoryInputs::save(const DraftFolder &folder, const QString &account, QList<Write> writes) {
    for (Write &write : writes) {
        const QByteArray bytes = Json::encode(write.entry);
        if (bytes.size() > maxBytes)
            write.done = std::unexpected(DraftFolder::Failure::storage);
        else
            write.done =
                folder.replace<Entry>(account, write.entry.id, write.known,
                                      write.entry.text.isEmpty() ? std::nullopt : std::optional<QByteArray>(bytes));
    }
    return writes;
}

QCoro::Task<bool> MemoryInputs::keep() {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto writes = dirty();
    if (writes.isEmpty() || !m_account)
        co_return writes.isEmpty();
    const auto done = co_await PoolAwaiter(
        [folder = m_folder, account = *m_account, writes] { return save(folder, account, writes); }, &m_pool);
    const bool all = std::ranges::all_of(done, [](const Write &write) { return write.done.has_value(); });
    if (!self || m_generation != generation)
        co_return all;
    for (const Write &write : done) {
        Box &box = m_boxes[write.entry.id];
        if (!write.done)
            continue;
        box.keptEdits = std::max(box.keptEdits, write.edits);
        box.writeId = write.entry.text.isEmpty() ? std::nullopt : write.entry.writeId;
    }
    setNotice(all ? QString() : u"刚才输入的内容没能存到本机。先不要关窗口，复制一份更稳妥。"_s);
    co_return all;
}

QCoro::Task<> MemoryInputs::read() {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto listing = co_await PoolAwaiter(
        [folder = m_folder, account = *m_account] {
            return folder.list<Entry>(account, [](const Entry &entry) { return entry.id; });
        },
        &m_pool);
    if (!self || m_generation != generation)
        co_return;
    if (!listing) {
        setNotice(u"上次没有存完的输入暂时读不出来，文件还在原处。"_s);
        co_return;
    }
    for (const Entry &entry : listing->records) {
        Box &box = m_boxes[entry.id];
        box.writeId = entry.writeId;
        // What was typed before the disk had answered goes after what it had.
        box.text = box.text.isEmpty() ? entry.text : entry.text + u'\n' + box.text;
    }
    Q_EMIT replaced();
    if (self)
        Q_EMIT keysChanged();
}

void MemoryInputs::recheckAccount() {
    const auto account = m_who.current();
    if (account == m_account)
        return;
    if (const auto writes = dirty(); m_account && !writes.isEmpty())
        m_pool.start([folder = m_folder, owner = *m_account, writes] { (void)save(folder, owner, writes); });
    ++m_generation;
    m_account = account;
    m_boxes.clear();
    m_notice.clear();
    if (m_account)
        detach(read(), "reading what was typed about memories");
    const QPointer self(this);
    Q_EMIT replaced();
    if (self)
        Q_EMIT keysChanged();
}

void MemoryInputs::setNotice(const QString &notice) {
    if (std::exchange(m_notice, notice) != notice)
        Q_EMIT replaced();
}

} // namespace lmp
