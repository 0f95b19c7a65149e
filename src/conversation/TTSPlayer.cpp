#include "conversation/TTSPlayer.h"

#include "conversation/TTSTextChunker.h"
#include "core/Detach.h"
#include "core/PoolAwaiter.h"

#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;

QString TTSPlayer::speechUnavailable() {
    return u"语音暂时不可用，请继续查看字幕。"_s;
}

QString TTSPlayer::notPlayed() {
    return u"语音未能播放，请继续查看字幕。"_s;
}

QString TTSPlayer::wasInterrupted() {
    return u"语音播放已中断，请继续查看字幕。"_s;
}

TTSPlayer::TTSPlayer(const APIClient &api, MakeOutput makeOutput, QObject *parent)
    : QObject(parent)
    , m_ai(clientOf(api))
    , m_makeOutput(std::move(makeOutput)) {
    m_done.resolve(true);
}

TTSPlayer::~TTSPlayer() {
    m_stop.request_stop();
    m_done.resolve(true);
}

APIClient TTSPlayer::clientOf(APIClient api) {
    api.session = URLSession::normal();   // 20 s of silence, 30 s in all
    api.slowSession = URLSession::slow(); // 90 s and 180 s
    return api;
}

void TTSPlayer::speak(const QString &text) {
    begin();
    const auto generation = m_generation;
    const auto pieces = TTSTextChunker::chunks(text);
    if (!pieces)
        m_textError = TTSTextChunker::describe(pieces.error());
    else
        m_queue = *pieces;
    // Nobody can speak a silence, and the service takes none.
    m_queue.removeIf([](const QString &piece) { return piece.trimmed().isEmpty(); });
    m_playing = !m_queue.isEmpty();
    Q_EMIT changed();
    if (m_generation != generation)
        return;
    if (m_playing)
        next();
    else
        end(std::nullopt);
}

void TTSPlayer::begin() {
    ++m_generation;
    m_stop.request_stop();
    m_stop = std::stop_source();
    dropPlayer();
    m_queue.clear();
    m_playing = m_interrupted = false;
    m_speakingText.reset();
    m_textError.reset();
    m_playbackError.reset();
    m_done.resolve(false);
    m_done = Later<bool>();
}

void TTSPlayer::stop() {
    if (!m_playing) {
        m_speakingText.reset();
        m_textError.reset();
        m_playbackError.reset();
        m_interrupted = false;
        Q_EMIT changed();
        return;
    }
    m_speakingText.reset();
    end(std::nullopt);
}

void TTSPlayer::interrupt() {
    if (!m_playing)
        return;
    m_interrupted = true;
    end(wasInterrupted());
}

void TTSPlayer::next() {
    if (m_queue.isEmpty()) {
        m_speakingText.reset();
        end(std::nullopt);
        return;
    }
    const QString piece = m_queue.takeFirst();
    m_speakingText = piece;
    detach(speakPiece(piece), "speaking a text");
    Q_EMIT changed();
}

QCoro::Task<> TTSPlayer::speakPiece(QString piece) {
    const QPointer self(this);
    const auto generation = m_generation;
    // A voice takes its time over a long sentence, which the normal session has no patience for.
    const auto spoken = co_await m_ai.request<TtsResp>(u"/tts"_s, "POST", TtsBody{piece}, true, m_stop.get_token());
    if (!self || m_generation != generation || !m_playing)
        co_return;
    if (!spoken) {
        end(speechUnavailable());
        co_return;
    }
    // Some megabytes of text, as a rule.
    const auto audio = co_await PoolAwaiter(
        [said = spoken->audio, encoding = spoken->encoding] { return SpeechAudio::of(said, encoding); });
    if (self && m_generation == generation && m_playing)
        play(audio);
}

void TTSPlayer::play(const std::optional<SpeechAudio> &audio) {
    if (!audio) {
        end(notPlayed());
        return;
    }
    m_player = m_makeOutput();
    connect(m_player.get(), &AudioOutput::ended, this, &TTSPlayer::onEnded);
    m_player->play(audio->bytes, audio->format);
    Q_EMIT changed();
}

void TTSPlayer::onEnded(AudioOutput::End end_) {
    if (sender() != m_player.get())
        return;
    dropPlayer();
    switch (end_) {
    case AudioOutput::End::finished:
        next();
        return;
    case AudioOutput::End::interrupted:
        externallyManagedSession ? next() : interrupt();
        return;
    case AudioOutput::End::unplayable:
        end(notPlayed());
        return;
    }
}

void TTSPlayer::end(const std::optional<QString> &note) {
    ++m_generation;
    m_stop.request_stop();
    m_stop = std::stop_source();
    dropPlayer();
    m_queue.clear();
    m_playing = false;
    m_playbackError = note;
    m_done.resolve(true);
    Q_EMIT changed();
    if (onFinished)
        onFinished();
}

void TTSPlayer::dropPlayer() {
    // It may be the one that reports.
    if (auto *player = m_player.release()) {
        player->disconnect(this);
        player->deleteLater();
    }
}

QCoro::Task<> TTSPlayer::finished() {
    const auto done = m_done;
    co_await done;
}

} // namespace lmp
