#pragma once

#include <QByteArray>
#include <QString>
#include <QtPlugin>

#include <functional>
#include <memory>

namespace lmp {

/// What the module that plays audio offers to `SystemAudioOutput`, which loads it at the first sound: the multimedia
/// libraries are many, and a window that never speaks does not pay for them.
///
/// Made and used on the UI thread. Nothing but these functions crosses the border between program and module.
class AudioBackend {
public:
    enum class End { finished, interrupted, unplayable };
    /// One piece being played. Destroying it stops it; then `ended` is not called any more.
    class Player {
    public:
        virtual ~Player() = default;
    };

    virtual ~AudioBackend() = default;
    /// @param ended called once, later, through the event loop
    virtual std::unique_ptr<Player> play(const QByteArray &audio, const QString &format,
                                         std::function<void(End)> ended) = 0;
};

} // namespace lmp

#define LMP_AUDIO_BACKEND "com.tolvey.quillet.AudioBackend/1"
Q_DECLARE_INTERFACE(lmp::AudioBackend, LMP_AUDIO_BACKEND)
