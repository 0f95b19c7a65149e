#include "screens/chat/MessageDeeds.h"

#include "core/PlainLabel.h"

#include <QClipboard>
#include <QGuiApplication>

namespace lmp {

using namespace Qt::StringLiterals;

MessageDeeds::MessageDeeds(ConversationSession &session, ChatWithTwinView &view, ExternalOpener *opener,
                           QObject *parent)
    : QObject(parent)
    , m_session(session)
    , m_view(view)
    , m_opener(opener) {
    connect(&m_view, &ChatWithTwinView::stateChanged, this, &MessageDeeds::onViewChanged);
}

void MessageDeeds::onViewChanged() {
    if (const auto &used = m_view.showUsed())
        m_used.show(*used);
    Q_EMIT changed();
}

QStringList MessageDeeds::feedbackReasonTexts() const {
    return {u"不像我"_s, u"编造了内容"_s, u"时机不对"_s, u"太长了"_s, u"没说到点子上"_s, u"越界了"_s};
}

void MessageDeeds::copyText(const QString &text) {
    if (auto *clipboard = QGuiApplication::clipboard())
        clipboard->setText(text);
}

void MessageDeeds::copyMessage(const QString &messageId) {
    const auto *conversation = m_session.conversation();
    if (const auto *message = conversation ? ConversationMessageDelivery::find(*conversation, messageId) : nullptr)
        copyText(message->text);
}

bool MessageDeeds::openLink(const QUrl &link) {
    const QString scheme = link.scheme();
    if (!link.isValid() || link.host().isEmpty() || (scheme != u"http"_s && scheme != u"https"_s))
        m_linkNotice = u"只打开 http 或 https 开头的链接，这个链接没有打开。"_s;
    else if (!m_opener->open(link))
        m_linkNotice = u"没有程序能打开这个链接："_s + PlainLabel::line(link.toString(), PlainLabel::longestSentence);
    else
        m_linkNotice.clear();
    Q_EMIT linkNoticeChanged();
    return m_linkNotice.isEmpty();
}

void MessageDeeds::closeLinkNotice() {
    if (!std::exchange(m_linkNotice, QString()).isEmpty())
        Q_EMIT linkNoticeChanged();
}

} // namespace lmp
