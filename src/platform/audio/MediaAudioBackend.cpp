#include "platform/audio/MediaAudioBackend.h"

#include <QAudioDevice>
#include <QAudioOutput>
#include <QBuffer>
#include <QMediaDevices>
#include <QMediaPlayer>
#include <QTimer>
#include <QUrl>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// A player that neither plays nor complains: a decoder that waits for more, a device that takes nothing.
constexpr int longestSilence = 10'000; ///< ms

class MediaPiece : public AudioBackend::Player {
public:
    MediaPiece(const QByteArray &audio, const QString &format, std::function<void(AudioBackend::End)> ended)
        : m_ended(std::move(ended)) {
        using End = AudioBackend::End;
        m_bytes->setData(audio);
        m_bytes->open(QIODevice::ReadOnly);
        m_silence.setSingleShot(true);
        m_silence.setInterval(longestSilence);
        QObject::connect(&m_silence, &QTimer::timeout, &m_here, [this] {
            m_stuck = true;
            end(m_heard ? End::interrupted : End::unplayable);
        });
        if (QMediaDevices::defaultAudioOutput().isNull()) {
            QMetaObject::invokeMethod(&m_here, [this] { end(End::unplayable); }, Qt::QueuedConnection);
            return;
        }
        m_output = std::make_unique<QAudioOutput>();
        m_player = std::make_unique<QMediaPlayer>();
        QObject::connect(&m_devices, &QMediaDevices::audioOutputsChanged, &m_here, [this] {
            if (QMediaDevices::defaultAudioOutput().isNull())
                end(End::interrupted);
        });
        QObject::connect(m_player.get(), &QMediaPlayer::errorOccurred, &m_here,
                         [this] { end(m_heard ? End::interrupted : End::unplayable); });
        QObject::connect(m_player.get(), &QMediaPlayer::positionChanged, &m_here, [this](qint64 position) {
            m_heard = m_heard || position > 0;
            m_silence.start();
        });
        QObject::connect(m_player.get(), &QMediaPlayer::mediaStatusChanged, &m_here,
                         [this](QMediaPlayer::MediaStatus status) {
                             if (status == QMediaPlayer::EndOfMedia)
                                 end(End::finished);
                             else if (status == QMediaPlayer::InvalidMedia)
                                 end(End::unplayable);
                         });
        m_player->setAudioOutput(m_output.get());
        m_player->setSourceDevice(m_bytes.get(), QUrl(u"speech."_s + format));
        m_player->play();
        m_silence.start();
    }

    /// A player whose device is dead waits for it in its destructor, for ever: it is left behind.
    ~MediaPiece() override {
        if (!m_stuck)
            return;
        m_player->disconnect();
        static_cast<void>(m_player.release());
        static_cast<void>(m_output.release());
        static_cast<void>(m_bytes.release());
    }
    MediaPiece(const MediaPiece &) = delete;
    MediaPiece &operator=(const MediaPiece &) = delete;

private:
    void end(AudioBackend::End how) {
        m_silence.stop();
        // Not from inside the player's own signal: whoever hears of it lets go of all this.
        if (m_ended)
            QMetaObject::invokeMethod(
                &m_here, [how, ended = std::exchange(m_ended, nullptr)] { ended(how); }, Qt::QueuedConnection);
    }

    std::function<void(AudioBackend::End)> m_ended;
    bool m_heard = false;
    std::unique_ptr<QBuffer> m_bytes = std::make_unique<QBuffer>();
    bool m_stuck = false;
    QTimer m_silence;
    QMediaDevices m_devices;
    std::unique_ptr<QAudioOutput> m_output; ///< made where there is a device to play on
    std::unique_ptr<QMediaPlayer> m_player;
    QObject m_here; ///< last: when it is gone, nobody reports any more
};

} // namespace

MediaAudioBackend::MediaAudioBackend() {
#ifdef Q_OS_LINUX
    // The other one that Qt 6.4 has there dies of a missing plugin of GStreamer's; this one brings its own decoders.
    if (!qEnvironmentVariableIsSet("QT_MEDIA_BACKEND"))
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
#endif
}

std::unique_ptr<AudioBackend::Player> MediaAudioBackend::play(const QByteArray &audio, const QString &format,
                                                              std::function<void(End)> ended) {
    return std::make_unique<MediaPiece>(audio, format, std::move(ended));
}

} // namespace lmp
