#pragma once

#include "conversation/SpeechAudio.h"
#include "core/APIClient.h"
#include "core/Later.h"
#include "platform/AudioOutput.h"

#include <QObject>

namespace lmp {

/// Reads a text aloud: cuts it into pieces, has the service speak one after another, and plays them in order.
///
/// Owned by whoever shows the subtitles; UI thread. What goes wrong is a note beside the text and ends the reading; the
/// piece that was being spoken stays readable until something else is read or the notes are closed. Answers and sounds
/// that are late for an earlier text are dropped.
class TTSPlayer : public QObject {
    Q_OBJECT
public:
    struct TtsBody {
        QString text;
    };
    struct TtsResp {
        QString audio; ///< encoded, in base64
        std::optional<QString> encoding;
        std::optional<QString> voice;
    };
    using MakeOutput = std::function<std::unique_ptr<AudioOutput>()>;

    /// @param api of the service; the player has its own client on the same base
    TTSPlayer(const APIClient &api, MakeOutput makeOutput, QObject *parent = nullptr);
    ~TTSPlayer() override;

    /// Reads `text` in place of what is being read.
    void speak(const QString &text);
    /// Ends the reading, as the person wishes: there is no note about it.
    void stop();
    /// Ends it because somebody else needs the ears, a call or another program.
    void interrupt();
    /// Resumes when the reading under way has ended, however it did; at once when there is none.
    QCoro::Task<> finished();

    /// Pieces still to be spoken, without the one that is.
    const QStringList &queue() const { return m_queue; }
    bool playing() const { return m_playing; }
    /// The last reading was cut off.
    bool interrupted() const { return m_interrupted; }
    const std::optional<QString> &speakingText() const { return m_speakingText; }
    /// Why the text cannot be cut for speaking.
    const std::optional<QString> &textError() const { return m_textError; }
    /// Why there is no sound, or no more of it.
    const std::optional<QString> &playbackError() const { return m_playbackError; }
    /// There is a sound now; else the next one is being made.
    bool isPlayingAudio() const { return m_player != nullptr; }

    /// Called when a reading has ended, however it did, but not when another one takes its place.
    std::function<void()> onFinished;
    /// The sound belongs to a call: the call says when it interrupts, and what the device takes for an interruption,
    /// the call itself as a rule, ends no more than the piece.
    bool externallyManagedSession = false;

    static QString speechUnavailable();
    static QString notPlayed();
    static QString wasInterrupted();

Q_SIGNALS:
    void changed();

private:
    static APIClient clientOf(APIClient api);
    void begin();
    void next();
    QCoro::Task<> speakPiece(QString piece);
    void play(const std::optional<SpeechAudio> &audio);
    void onEnded(AudioOutput::End end);
    /// @param note none when it ended well or as wished
    void end(const std::optional<QString> &note);
    void dropPlayer();

    APIClient m_ai;
    MakeOutput m_makeOutput;
    std::unique_ptr<AudioOutput> m_player;
    QStringList m_queue;
    bool m_playing = false;
    bool m_interrupted = false;
    std::optional<QString> m_speakingText;
    std::optional<QString> m_textError;
    std::optional<QString> m_playbackError;
    quint64 m_generation = 0; ///< counts the readings
    std::stop_source m_stop;
    Later<bool> m_done; ///< of the reading under way
};
BOOST_DESCRIBE_STRUCT(TTSPlayer::TtsBody, (), (text))
BOOST_DESCRIBE_STRUCT(TTSPlayer::TtsResp, (), (audio, encoding, voice))

} // namespace lmp
