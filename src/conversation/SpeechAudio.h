#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace lmp {

/// What the speech route answers, as bytes and the container they are in. A value.
struct SpeechAudio {
    QByteArray bytes;
    QString format; ///< as `AudioOutput` wants it

    /// @param audio base64
    /// @param encoding the container's name or media type, in any case; by its first bytes where it is not named
    /// @return none when it is no base64, empty, or of a container that nobody here plays
    static std::optional<SpeechAudio> of(const QString &audio, const std::optional<QString> &encoding);
};

} // namespace lmp
