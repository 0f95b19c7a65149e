#include "screens/memory/MemoryCorrectionModel.h"

#include "core/Detach.h"
#include "identity/MemoryTexts.h"
#include "screens/memory/MemoryInputs.h"
#include "screens/memory/MemoryItemsModel.h"

#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// What the wording is kept under that a correction was typed upon.
QString baseKeyOf(const QString &memoryId) {
    return u"corrected:"_s + memoryId;
}

} // namespace

MemoryCorrectionModel::MemoryCorrectionModel(MemoryServices services, QObject *parent)
    : QObject(parent)
    , m_services(std::move(services)) {
    connect(m_services.inputs, &MemoryInputs::replaced, this, &MemoryCorrectionModel::onInputs);
}

QString MemoryCorrectionModel::keyOf(const QString &memoryId) {
    return u"correction:"_s + memoryId;
}

void MemoryCorrectionModel::giveUp(MemoryInputs &inputs, const QString &memoryId) {
    inputs.setText(keyOf(memoryId), {});
    inputs.setText(baseKeyOf(memoryId), {});
}

QString MemoryCorrectionModel::becomesFact() {
    return MemoryTexts::becomesFact();
}

QString MemoryCorrectionModel::savedTitle() const {
    return m_state == State::Saved || m_state == State::Undoing ? MemoryTexts::correctionSavedTitle() : QString();
}

QString MemoryCorrectionModel::savedText() const {
    return savedTitle().isEmpty() ? QString() : MemoryTexts::correctionSavedText();
}

void MemoryCorrectionModel::open(const MemoryItemDTO &item) {
    m_item = item;
    m_history = {};
    m_history.current = item.content;
    const QString kept = m_services.inputs->text(keyOf(item.id));
    const QString base = m_services.inputs->text(baseKeyOf(item.id));
    m_text = kept.isEmpty() ? item.content : kept;
    m_base = kept.isEmpty() || base.isEmpty() ? item.content : base;
    m_told.clear();
    read();
}

void MemoryCorrectionModel::reopen() {
    if (m_item.id.isEmpty() || m_state == State::Saving)
        return;
    // Whoever goes on after a conflict has read what it was told with.
    if (!m_told.isEmpty()) {
        m_base = std::exchange(m_told, {});
        if (m_text != m_history.current)
            keep(m_text);
    }
    read();
}

void MemoryCorrectionModel::read() {
    ++m_generation;
    m_revision.clear();
    m_undone = false;
    m_origins.setRecords({});
    // One that was closed while it is being saved goes on with that.
    if (m_saving.contains(m_item.id)) {
        settle(State::Saving, {});
        return;
    }
    settle(State::Loading, {});
    detach(load(), "reading a memory that is to be corrected");
}

QCoro::Task<> MemoryCorrectionModel::load() {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_services.account.owner();
    const auto history = co_await m_services.service.history(m_item.id);
    if (!self || !isStill(generation, owner))
        co_return;
    if (!history) {
        settle(State::Unreadable, MemoryTexts::historyUnreadable(history.error().reason), true);
        co_return;
    }
    show(*history);
    judge();
}

void MemoryCorrectionModel::judge() {
    if (m_revision.isEmpty()) {
        settle(State::Ready, MemoryTexts::noRevision());
    } else if (typed() && m_base != m_history.current) {
        m_told = m_history.current;
        settle(State::Ready, MemoryTexts::correctionConflict(m_told), true);
    } else
        settle(State::Ready, {});
}

void MemoryCorrectionModel::show(const MemoryHistoryResp &history) {
    const bool untouched = m_text == m_history.current;
    m_history = history;
    m_revision = history.revision.value_or(QString());
    if (untouched)
        m_text = history.current;
    // What was not known to be saved turns out to be.
    else if (m_text == history.current)
        keep({});
    if (m_text == history.current)
        m_base = history.current;
    auto chain = MemoryOrigin::chain(m_item, history);
    for (auto &link : chain)
        link.at = MemoryItemsModel::dateText(link.at);
    m_origins.setRecords(std::vector<MemoryOrigin>(chain.begin(), chain.end()));
}

bool MemoryCorrectionModel::isStill(quint64 generation, const QString &owner) {
    if (m_generation != generation)
        return false;
    if (m_services.account.isStill(owner))
        return true;
    drop(MemoryTexts::accountChanged());
    return false;
}

void MemoryCorrectionModel::settle(State state, const QString &message, bool mustReopen) {
    m_state = state;
    m_message = message;
    m_mustReopen = mustReopen;
    const QPointer self(this);
    Q_EMIT changed();
    if (self)
        Q_EMIT textChanged();
}

void MemoryCorrectionModel::setText(const QString &text) {
    if (text == m_text || m_state == State::Closed)
        return;
    m_text = text;
    keep(text == m_history.current ? QString() : text);
    Q_EMIT textChanged();
}

void MemoryCorrectionModel::keep(const QString &text) {
    m_services.inputs->setText(keyOf(m_item.id), text);
    m_services.inputs->setText(baseKeyOf(m_item.id), text.isEmpty() ? QString() : m_base);
}

void MemoryCorrectionModel::onInputs() {
    // What the disk had comes after the sheet was opened.
    const QString kept = m_item.id.isEmpty() ? QString() : m_services.inputs->text(keyOf(m_item.id));
    if (m_state == State::Closed || kept.isEmpty() || kept == m_text)
        return;
    m_text = kept;
    if (const QString base = m_services.inputs->text(baseKeyOf(m_item.id)); !base.isEmpty())
        m_base = base;
    if (m_state == State::Ready && !m_mustReopen)
        judge();
    else
        Q_EMIT textChanged();
}

bool MemoryCorrectionModel::canSave() const {
    return m_state == State::Ready && !m_mustReopen && !m_revision.isEmpty() && typed() && !m_text.trimmed().isEmpty();
}

bool MemoryCorrectionModel::canAct() const {
    return canSave() || m_mustReopen ||
           (m_state != State::Closed && m_state != State::Unreadable && m_state != State::Ready);
}

void MemoryCorrectionModel::save() {
    if (!canSave())
        return;
    settle(State::Saving, {});
    detach(saveNow(m_text), "saving a correction");
}

QCoro::Task<> MemoryCorrectionModel::saveNow(QString content) {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_services.account.owner();
    const QString memoryId = m_item.id;
    m_saving.insert(memoryId);
    const auto outcome = co_await m_services.service.correct(memoryId, content, m_revision);
    if (!self)
        co_return;
    m_saving.remove(memoryId);
    if (!m_services.account.isStill(owner)) {
        (void)isStill(generation, owner);
        co_return;
    }
    if (m_item.id != memoryId || m_state != State::Saving) {
        tellUnseen(memoryId, content, outcome);
        co_return;
    }
    onSaved(content, outcome);
    const bool conflict = std::holds_alternative<MemoryCorrectionOutcome::conflict>(outcome.value);
    if (self && conflict && m_item.id == memoryId && m_mustReopen)
        co_await learnCurrent();
}

void MemoryCorrectionModel::onSaved(const QString &content, const MemoryCorrectionOutcome &outcome) {
    const auto *done = std::get_if<MemoryCorrectionOutcome::done>(&outcome.value);
    if (!done) {
        m_revision.clear();
        const bool conflict = std::holds_alternative<MemoryCorrectionOutcome::conflict>(outcome.value);
        settle(State::Ready, conflict ? MemoryTexts::correctionConflict({}) : MemoryTexts::correctionUnknown(), true);
        return;
    }
    m_revision = done->revision;
    m_history.current = m_base = content;
    // What was typed on meanwhile says something new.
    keep(m_text == content ? QString() : m_text);
    const QPointer self(this);
    const QString memoryId = m_item.id;
    settle(State::Saved, m_revision.isEmpty() ? MemoryTexts::revisionNotConfirmed() : QString());
    if (self)
        Q_EMIT reworded(memoryId, content);
}

void MemoryCorrectionModel::tellUnseen(const QString &memoryId, const QString &content,
                                       const MemoryCorrectionOutcome &outcome) {
    if (std::holds_alternative<MemoryCorrectionOutcome::done>(outcome.value)) {
        if (m_services.inputs->text(keyOf(memoryId)) == content)
            giveUp(*m_services.inputs, memoryId);
        const QPointer self(this);
        Q_EMIT settledUnseen(MemoryTexts::correctionSavedTitle() + u"。"_s, false);
        if (self)
            Q_EMIT reworded(memoryId, content);
    } else if (std::holds_alternative<MemoryCorrectionOutcome::conflict>(outcome.value))
        Q_EMIT settledUnseen(MemoryTexts::correctionConflict({}), true);
    else
        Q_EMIT settledUnseen(MemoryTexts::correctionUnknown(), true);
}

QCoro::Task<> MemoryCorrectionModel::learnCurrent() {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_services.account.owner();
    const auto history = co_await m_services.service.history(m_item.id);
    if (!self || !isStill(generation, owner) || !m_mustReopen || !history)
        co_return;
    m_told = history->current;
    settle(State::Ready, MemoryTexts::correctionConflict(m_told), true);
}

void MemoryCorrectionModel::undo() {
    if (!canUndo())
        return;
    settle(State::Undoing, {});
    detach(undoNow(), "taking a correction back");
}

QCoro::Task<> MemoryCorrectionModel::undoNow() {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_services.account.owner();
    const QString memoryId = m_item.id;
    const auto outcome = co_await m_services.service.revert(memoryId, m_revision);
    if (!self)
        co_return;
    if (m_generation != generation && m_services.account.isStill(owner)) {
        if (const auto *done = std::get_if<MemoryRevertOutcome::done>(&outcome.value))
            Q_EMIT reworded(memoryId, done->content);
        else if (!std::holds_alternative<MemoryRevertOutcome::unchanged>(outcome.value))
            Q_EMIT settledUnseen(MemoryTexts::revertUnknown(), true);
        co_return;
    }
    if (!isStill(generation, owner))
        co_return;
    m_undone = true;
    if (const auto *done = std::get_if<MemoryRevertOutcome::done>(&outcome.value)) {
        m_revision = done->revision;
        const QString content = done->content;
        m_history.current = m_base = content;
        m_text = content;
        settle(State::Saved, MemoryTexts::revertedIsFact());
        if (self)
            Q_EMIT reworded(memoryId, content);
    } else if (const auto *unchanged = std::get_if<MemoryRevertOutcome::unchanged>(&outcome.value))
        settle(State::Saved, unchanged->message);
    else if (std::holds_alternative<MemoryRevertOutcome::conflict>(outcome.value))
        settle(State::Saved, MemoryTexts::revertConflict());
    else
        settle(State::Saved, MemoryTexts::revertUnknown());
}

void MemoryCorrectionModel::discard() {
    if (m_state == State::Closed)
        return;
    keep({});
    m_text = m_base = m_history.current;
    m_told.clear();
    // With nothing typed there is nothing to be in conflict.
    if (m_state == State::Ready && !m_revision.isEmpty())
        settle(State::Ready, {});
    else
        Q_EMIT textChanged();
}

void MemoryCorrectionModel::close() {
    drop();
}

void MemoryCorrectionModel::drop(const QString &why) {
    ++m_generation;
    if (why.isEmpty())
        m_item = {};
    m_history = {};
    m_revision.clear();
    m_text.clear();
    m_base.clear();
    m_told.clear();
    m_origins.setRecords({});
    settle(why.isEmpty() ? State::Closed : State::Unreadable, why);
}

} // namespace lmp
