#pragma once

#include "conversation/TTSPlayer.h"

#include <QtQmlIntegration>

namespace lmp {

class ConversationSession;

/// Reading a reply aloud, as the chat shows it: whose, the piece that is being spoken, and what went wrong.
///
/// Part of a ChatModel, UI thread; the session outlives it. Another conversation ends the reading.
class SpeechModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of a ChatModel")
    /// The message that is being read; empty when none is.
    Q_PROPERTY(QString messageId READ messageId NOTIFY changed)
    /// There is something to show: a reading, or a note about the last one.
    Q_PROPERTY(bool shown READ shown NOTIFY changed)
    Q_PROPERTY(bool speaking READ speaking NOTIFY changed)
    /// The sound of the piece is still being made.
    Q_PROPERTY(bool preparing READ preparing NOTIFY changed)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY changed)
    Q_PROPERTY(QString note READ note NOTIFY changed)
public:
    SpeechModel(ConversationSession &session, const APIClient &api, TTSPlayer::MakeOutput makeOutput,
                QObject *parent = nullptr);

    QString messageId() const { return speaking() ? m_messageId : QString(); }
    bool shown() const { return speaking() || !note().isEmpty(); }
    bool speaking() const { return m_player.playing() || m_reading; }
    bool preparing() const { return speaking() && !m_player.isPlayingAudio(); }
    QString subtitle() const { return m_player.speakingText().value_or(QString()).simplified(); }
    QString note() const;

    /// Reads a message aloud; the one that is being read falls silent.
    Q_INVOKABLE void toggle(const QString &messageId);
    /// Ends the reading, or puts its note away.
    Q_INVOKABLE void stop();

    /// What of a reply is spoken: its words, without the signs that only lay them out. Pure; any thread.
    static QString spokenText(const QString &markdown);
    /// As much of a message as is read aloud at all, in UTF-16 units: hours of listening.
    static constexpr qsizetype mostSpoken = 50'000;

Q_SIGNALS:
    void changed();

private:
    QCoro::Task<> speakReply(QString markdown);

    ConversationSession &m_session;
    TTSPlayer m_player;
    QString m_messageId;
    bool m_reading = false; ///< the words of a long message are still being made out
    bool m_cut = false;     ///< the rest of it is not read
    quint64 m_asked = 0;    ///< counts what was asked for
};

} // namespace lmp
