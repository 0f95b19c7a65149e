#include "screens/memory/MemoryInputs.h"

#include "screens/memory/MemoryInputStore.h"

#include <QPointer>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

QString joined(const QString &mine, const QString &theirs) {
    if (theirs.contains(mine))
        return theirs;
    return mine.contains(theirs) ? mine : mine + u'\n' + theirs;
}

} // namespace

MemoryInputs::MemoryInputs(const ApplicationSupport &support, ConversationAccount account, Clock &clock,
                           const QString &scope, QObject *parent)
    : QObject(parent)
    , m_who(std::move(account))
    , m_signIn(m_who.signIn())
    , m_texts(KeptTextStore(MemoryInputStore(support, scope)), clock) {
    connect(&m_texts, &KeptTexts::replaced, this, &MemoryInputs::onReplaced);
    connect(&m_texts, &KeptTexts::restored, this, &MemoryInputs::onReplaced);
    connect(&m_texts, &KeptTexts::stateChanged, this, &MemoryInputs::onStateChanged);
    if (const auto now = m_who.current())
        m_texts.open(now);
}

QSet<QString> MemoryInputs::keys() const {
    QSet<QString> keys;
    for (const auto &[key, box] : m_texts.boxes().asKeyValueRange()) {
        if (!box.input.text.isEmpty())
            keys.insert(key);
    }
    return keys;
}

void MemoryInputs::setText(const QString &key, const QString &text) {
    const QString before = this->text(key);
    if (before == text)
        return;
    m_texts.change(key, [&](ConversationInput &input) { input.text = text; });
    if (before.isEmpty() != text.isEmpty())
        Q_EMIT keysChanged();
}

void MemoryInputs::recheckAccount() {
    const auto account = m_who.current();
    const QString before = std::exchange(m_signIn, m_who.signIn());
    const bool samePerson = before == m_signIn;
    if (account == m_texts.account())
        return;
    m_joined = false;
    m_texts.open(account, samePerson);
}

void MemoryInputs::onReplaced() {
    const QPointer self(this);
    Q_EMIT replaced();
    if (self)
        Q_EMIT keysChanged();
}

void MemoryInputs::onStateChanged() {
    joinConflicts();
    QString notice = trouble();
    if (notice.isEmpty() && m_joined)
        notice = u"这段内容在别处也改过，两边写的都放在一起了，请核对。"_s;
    if (std::exchange(m_notice, notice) != notice)
        Q_EMIT replaced();
}

void MemoryInputs::closeNotice() {
    m_joined = false;
    onStateChanged();
}

void MemoryInputs::joinConflicts() {
    // As a copy: what is put together is announced, and whoever hears of it may type.
    const auto boxes = m_texts.boxes();
    for (const auto &[key, box] : boxes.asKeyValueRange()) {
        if (!box.theirs)
            continue;
        ConversationInput both = box.input;
        both.text = joined(box.input.text, box.theirs->input.text);
        m_joined = true;
        m_texts.resolve(key, both);
    }
}

QString MemoryInputs::trouble() const {
    const auto failed = [](const KeptText &box) {
        return box.error && box.isDirty();
    };
    if (std::ranges::any_of(m_texts.boxes(), failed))
        return u"刚才输入的内容没能存到本机。先不要关窗口，复制一份更稳妥。"_s;
    if (m_texts.restoredAccount() != m_texts.account() || !m_texts.account() || m_texts.unreadable() == 0)
        return {};
    return u"上次没有存完的输入暂时读不出来，文件还在原处。"_s;
}

} // namespace lmp
