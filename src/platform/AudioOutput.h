#pragma once

#include <QByteArray>
#include <QObject>

namespace lmp {

/// Plays one piece of encoded audio.
///
/// Made for one piece and gone with it, UI thread. However it ends, `ended` says so once and later, never inside
/// `play`; destroying it stops the sound and then nothing follows.
class AudioOutput : public QObject {
    Q_OBJECT
public:
    enum class End {
        finished,    ///< played to its end
        interrupted, ///< cut off: the device went away, or somebody else took it
        unplayable,  ///< no audio, a format that nothing here knows, or no device to play it on
    };
    Q_ENUM(End)

    using QObject::QObject;

    /// @param format of the container: "wav", "mp3", "ogg", "flac", "m4a" or "aac"
    virtual void play(const QByteArray &audio, const QString &format) = 0;

Q_SIGNALS:
    void ended(lmp::AudioOutput::End end);
};

} // namespace lmp
