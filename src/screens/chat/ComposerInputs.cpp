#include "screens/chat/ComposerInputs.h"

#include "core/FilesSettled.h"

#include <QPointer>
#include <QSet>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// The fresh conversations that some window has open: their input is not left behind.
QSet<QString> &freshInUse() {
    static QSet<QString> ids;
    return ids;
}

} // namespace

ComposerInputs::ComposerInputs(ConversationInputDraftStore store, Clock &clock, QObject *parent)
    : QObject(parent)
    , m_texts(KeptTextStore(std::move(store)), clock) {
    connect(&m_texts, &KeptTexts::replaced, this, &ComposerInputs::onReplaced);
    connect(&m_texts, &KeptTexts::restored, this, &ComposerInputs::onRestored);
    connect(&m_texts, &KeptTexts::stateChanged, this, &ComposerInputs::stateChanged);
    connect(&m_texts, &KeptTexts::written, this, [this](const QStringList &ids) {
        if (std::ranges::any_of(ids, [this](const QString &id) { return id != m_id; }))
            Q_EMIT kept();
    });
}

ComposerInputs::~ComposerInputs() {
    freshInUse().remove(m_id);
}

void ComposerInputs::moveTo(const Place &place, bool carry) {
    if (place.id == m_id) {
        describe(place);
        return;
    }
    freshInUse().remove(m_id);
    const QString before = std::exchange(m_id, place.id);
    if (place.isFresh() && !place.id.isEmpty())
        freshInUse().insert(place.id);
    m_texts.describe(place);
    if (carry)
        m_texts.move(before, place.id);
    if (m_texts.box(before).place.incognito)
        m_texts.drop(before);
    takeOver();
    const QPointer self(this);
    Q_EMIT replaced();
    if (self)
        Q_EMIT stateChanged();
    if (!self)
        return;
    m_texts.keepSoon();
    if (!place.incognito)
        m_texts.look(place.id);
}

void ComposerInputs::describe(const Place &place) {
    if (place.id != m_id)
        return;
    m_texts.describe(place);
    if (!place.isFresh())
        freshInUse().remove(m_id);
}

bool ComposerInputs::isFresh(const QString &id) const {
    const KeptText box = m_texts.box(id);
    return !id.isEmpty() && box.place.isFresh() && !box.place.incognito && !box.input.isEmpty();
}

QString ComposerInputs::typedLater() const {
    const KeptText now = m_texts.box(m_id);
    const auto begun = [](const QString &id, const KeptText &box) {
        return !id.isEmpty() && !box.place.isFresh() && box.changedAt.isValid();
    };
    return typedLast(begun, now.input.isEmpty() ? QDateTime() : now.changedAt).value_or(QString());
}

std::optional<QString> ComposerInputs::typedLast(const std::function<bool(const QString &, const KeptText &)> &counts,
                                                 QDateTime after) const {
    std::optional<QString> last; // what was typed before anything was open has no id
    for (const auto &[id, box] : m_texts.boxes().asKeyValueRange()) {
        if (id == m_id || box.place.incognito || box.input.isEmpty() || !counts(id, box) ||
            (after.isValid() && box.changedAt <= after))
            continue;
        last = id;
        after = box.changedAt;
    }
    return last;
}

QCoro::Task<> ComposerInputs::looked() {
    // Behind the look, which was given to the file thread before.
    co_await filesSettled();
}

bool ComposerInputs::isInUse(const QString &id) {
    return freshInUse().contains(id);
}

void ComposerInputs::takeOver() {
    const KeptText now = m_texts.box(m_id);
    if (m_id.isEmpty() || !now.place.isFresh() || now.place.incognito || !now.input.isEmpty())
        return;
    const auto last = typedLast(
        [](const QString &id, const KeptText &box) { return box.place.isFresh() && !box.theirs && !isInUse(id); });
    if (last)
        m_texts.move(*last, m_id);
}

void ComposerInputs::setText(const QString &text) {
    m_texts.change(m_id, [&](ConversationInput &input) { input.text = text; });
}

void ComposerInputs::setRetryMessage(std::optional<QString> messageId) {
    m_texts.change(m_id, [&](ConversationInput &input) { input.retryMessageId = std::move(messageId); });
}

void ComposerInputs::clear() {
    m_texts.change(m_id, [](ConversationInput &input) { input = {}; });
    Q_EMIT replaced();
    m_texts.keepSoon();
}

void ComposerInputs::open(const std::optional<QString> &account, bool samePerson) {
    if (!samePerson) {
        freshInUse().remove(m_id);
        m_id.clear();
    }
    m_texts.open(account, samePerson);
}

void ComposerInputs::onReplaced(const QString &id) {
    if (id == m_id)
        Q_EMIT replaced();
}

void ComposerInputs::onRestored() {
    takeOver();
    // A single file that cannot be read is told where it belongs.
    if (!m_id.isEmpty() && m_texts.unreadable() != 0)
        m_texts.look(m_id);
    Q_EMIT replaced();
}

QString ComposerInputs::otherText() const {
    const auto theirs = this->theirs();
    if (!theirs)
        return {};
    QStringList lines;
    if (!theirs->input.text.isEmpty())
        lines << theirs->input.text;
    if (const auto count = theirs->input.parts.size())
        lines << u"（附件 %1 个）"_s.arg(count);
    if (theirs->input.selection)
        lines << u"（已选目标）"_s;
    return lines.join(u'\n');
}

void ComposerInputs::keepMine() {
    if (!current().isEmpty())
        m_texts.resolve(m_id, current());
}

void ComposerInputs::takeTheirs() {
    if (const auto theirs = this->theirs())
        m_texts.resolve(m_id, theirs->input);
}

} // namespace lmp
