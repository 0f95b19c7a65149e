#include "screens/chat/ChatFind.h"

#include "conversation/ConversationSession.h"
#include "core/SearchFold.h"

namespace lmp {

using namespace Qt::StringLiterals;

ChatFind::ChatFind(ConversationSession &session, QObject *parent)
    : QObject(parent)
    , m_session(session) {
    connect(&session, &ConversationSession::opened, this, &ChatFind::onOpened);
    connect(&session, &ConversationSession::changed, this, [this] {
        m_folded.clear();
        if (m_open)
            look(currentId());
    });
}

QString ChatFind::statusText() const {
    if (m_terms.isEmpty())
        return {};
    if (m_found.isEmpty())
        return u"没有找到"_s;
    return u"第 %1 条，共 %2 条"_s.arg(m_current + 1).arg(m_found.size());
}

void ChatFind::setText(const QString &text) {
    if (text == m_text)
        return;
    m_text = text;
    m_terms = SearchTerms(text);
    look(currentId());
    if (!currentId().isEmpty())
        Q_EMIT goTo(currentId());
}

void ChatFind::begin() {
    m_open = true;
    look(currentId());
    Q_EMIT focusAsked();
}

void ChatFind::beginAt(const QString &text, const QString &messageId) {
    m_open = true;
    m_text = text;
    m_terms = SearchTerms(text);
    look(messageId);
    Q_EMIT goTo(messageId);
}

void ChatFind::close() {
    if (!std::exchange(m_open, false))
        return;
    m_folded.clear();
    Q_EMIT changed();
}

void ChatFind::step(int by) {
    if (m_found.isEmpty())
        return;
    m_current = (m_current + by + m_found.size()) % m_found.size();
    Q_EMIT changed();
    Q_EMIT goTo(currentId());
}

void ChatFind::look(const QString &current) {
    const auto *conversation = m_session.conversation();
    m_found.clear();
    if (conversation && !m_terms.isEmpty()) {
        const auto &messages = conversation->messages;
        if (m_folded.size() != messages.size()) {
            m_folded.clear();
            for (const auto &message : messages)
                m_folded.push_back(SearchFold::fold(message.text));
        }
        for (qsizetype i = 0; i < messages.size(); ++i) {
            if (m_terms.matches(m_folded[i]))
                m_found.push_back(messages[i].id);
        }
    }
    const qsizetype same = m_found.indexOf(current);
    m_current = same >= 0 ? same : m_found.size() - 1;
    Q_EMIT changed();
}

void ChatFind::onOpened() {
    m_folded.clear();
    const auto *conversation = m_session.conversation();
    const QString id = conversation ? conversation->id : QString();
    const QString before = std::exchange(m_conversationId, id);
    // What was looked for in one conversation is nobody's question in the next; what is asked while one is being opened
    // is about that one.
    if (!before.isEmpty() && id != before) {
        m_open = false;
        m_text.clear();
        m_terms = {};
    }
    look({});
}

} // namespace lmp
