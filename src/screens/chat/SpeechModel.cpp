#include "screens/chat/SpeechModel.h"

#include "conversation/ConversationMessageDelivery.h"
#include "conversation/ConversationSession.h"
#include "core/Detach.h"
#include "core/Graphemes.h"
#include "core/PoolAwaiter.h"

#include <QPointer>
#include <QRegularExpression>
#include <QTextDocument>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// A reply up to this length is made out within a frame.
constexpr qsizetype shortText = 4'000;

/// Without the half of a character at its end.
QString beginning(const QString &text) {
    if (text.size() <= SpeechModel::mostSpoken)
        return text;
    Graphemes graphemes(text);
    qsizetype size = 0;
    for (QStringView next = graphemes.next(); !next.isEmpty() && size + next.size() <= SpeechModel::mostSpoken;
         next = graphemes.next())
        size += next.size();
    return text.first(size);
}

} // namespace

SpeechModel::SpeechModel(ConversationSession &session, const APIClient &api, TTSPlayer::MakeOutput makeOutput,
                         QObject *parent)
    : QObject(parent)
    , m_session(session)
    , m_player(api, std::move(makeOutput)) {
    connect(&m_player, &TTSPlayer::changed, this, &SpeechModel::changed);
    connect(&session, &ConversationSession::opened, this, &SpeechModel::stop);
}

QString SpeechModel::note() const {
    const QString wrong = m_player.textError().value_or(m_player.playbackError().value_or(QString()));
    return wrong.isEmpty() && m_cut && speaking() ? u"这段话太长，只朗读前一部分。"_s : wrong;
}

void SpeechModel::toggle(const QString &messageId) {
    if (this->messageId() == messageId) {
        stop();
        return;
    }
    const auto *conversation = m_session.conversation();
    const auto *message = conversation ? ConversationMessageDelivery::find(*conversation, messageId) : nullptr;
    if (!message)
        return;
    stop();
    m_messageId = messageId;
    m_cut = message->text.size() > mostSpoken;
    const bool reply = message->role == TalkRole::twin;
    if (reply && message->text.size() > shortText) {
        m_reading = true;
        detach(speakReply(message->text), "making out the words of a reply");
        Q_EMIT changed();
    } else
        m_player.speak(reply ? spokenText(message->text) : beginning(message->text));
}

QCoro::Task<> SpeechModel::speakReply(QString markdown) {
    const QPointer self(this);
    const auto asked = m_asked;
    const QString text = co_await PoolAwaiter([markdown] { return spokenText(markdown); });
    if (!self || m_asked != asked)
        co_return;
    m_reading = false;
    m_player.speak(text);
}

void SpeechModel::stop() {
    ++m_asked;
    const bool was = shown();
    m_reading = false;
    m_cut = false;
    if (was)
        m_player.stop();
}

QString SpeechModel::spokenText(const QString &markdown) {
    QTextDocument document;
    document.setMarkdown(beginning(markdown), QTextDocument::MarkdownFeatures(QTextDocument::MarkdownDialectGitHub) |
                                                  QTextDocument::MarkdownNoHTML);
    QString text = document.toPlainText().remove(QChar::ObjectReplacementCharacter);
    // A line that has ended with its sentence ends no second time, in silence.
    static const QRegularExpression ends(u"([.。！？!?])\\s*\\n\\s*"_s), lines(u"\\s*\\n\\s*"_s);
    text.replace(ends, u"\\1"_s).replace(lines, u"\n"_s);
    return text.trimmed();
}

} // namespace lmp
