#pragma once

#include "platform/AudioBackend.h"
#include "platform/AudioOutput.h"

namespace lmp {

/// Plays on the system's own device, through a module beside the program that is loaded at the first sound and stays.
/// Without the module nothing is playable.
class SystemAudioOutput : public AudioOutput {
    Q_OBJECT
public:
    using AudioOutput::AudioOutput;

    void play(const QByteArray &audio, const QString &format) override;

private:
    std::unique_ptr<AudioBackend::Player> m_player;
};

} // namespace lmp
