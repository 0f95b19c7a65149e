#pragma once

#include "platform/AudioBackend.h"

#include <QObject>

namespace lmp {

/// Plays through Qt's multimedia libraries. The one object of the module, made when it is loaded; UI thread.
class MediaAudioBackend : public QObject, public AudioBackend {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID LMP_AUDIO_BACKEND)
    Q_INTERFACES(lmp::AudioBackend)
public:
    MediaAudioBackend();
    std::unique_ptr<Player> play(const QByteArray &audio, const QString &format,
                                 std::function<void(End)> ended) override;
};

} // namespace lmp
