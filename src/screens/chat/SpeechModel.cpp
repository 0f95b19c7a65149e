#include "screens/chat/SpeechModel.h"

#include "conversation/ConversationMessageDelivery.h"
#include "conversation/ConversationSession.h"

#include <QRegularExpression>
#include <QTextDocument>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// Hours of listening; a text that is longer is cut there.
constexpr qsizetype mostSpoken = 50'000;

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
    return m_player.textError().value_or(m_player.playbackError().value_or(QString()));
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
    m_messageId = messageId;
    m_player.speak(message->role == TalkRole::twin ? spokenText(message->text) : message->text);
}

void SpeechModel::stop() {
    if (shown())
        m_player.stop();
}

QString SpeechModel::spokenText(const QString &markdown) {
    QTextDocument document;
    document.setMarkdown(markdown.left(mostSpoken),
                         QTextDocument::MarkdownFeatures(QTextDocument::MarkdownDialectGitHub) |
                             QTextDocument::MarkdownNoHTML);
    QString text = document.toPlainText().remove(QChar::ObjectReplacementCharacter);
    // A line that has ended with its sentence ends no second time, in silence.
    static const QRegularExpression ends(u"([.。！？!?])\\s*\\n\\s*"_s), lines(u"\\s*\\n\\s*"_s);
    text.replace(ends, u"\\1"_s).replace(lines, u"\n"_s);
    return text.trimmed();
}

} // namespace lmp
