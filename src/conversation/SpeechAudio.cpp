#include "conversation/SpeechAudio.h"

#include <QHash>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

std::optional<QString> named(QString name) {
    static const QHash<QString, QString> names{
        {u"wav"_s, u"wav"_s},  {u"wave"_s, u"wav"_s}, {u"x-wav"_s, u"wav"_s}, {u"vnd.wave"_s, u"wav"_s},
        {u"mp3"_s, u"mp3"_s},  {u"mpeg"_s, u"mp3"_s}, {u"mpga"_s, u"mp3"_s},  {u"ogg"_s, u"ogg"_s},
        {u"opus"_s, u"ogg"_s}, {u"oga"_s, u"ogg"_s},  {u"flac"_s, u"flac"_s}, {u"x-flac"_s, u"flac"_s},
        {u"m4a"_s, u"m4a"_s},  {u"mp4"_s, u"m4a"_s},  {u"x-m4a"_s, u"m4a"_s}, {u"aac"_s, u"aac"_s}};
    name = name.section(u';', 0, 0).trimmed().toLower();
    if (name.startsWith(u"audio/"))
        name.remove(0, 6);
    const auto found = names.constFind(name);
    return found == names.cend() ? std::nullopt : std::optional(*found);
}

std::optional<QString> recognised(const QByteArray &bytes) {
    const auto second = bytes.size() > 1 ? static_cast<unsigned char>(bytes[1]) : 0;
    if (bytes.startsWith("RIFF") && bytes.sliced(std::min<qsizetype>(8, bytes.size())).startsWith("WAVE"))
        return u"wav"_s;
    if (bytes.startsWith("ID3") || (bytes.startsWith('\xff') && (second & 0xe6) == 0xe2))
        return u"mp3"_s;
    if (bytes.startsWith("OggS"))
        return u"ogg"_s;
    if (bytes.startsWith("fLaC"))
        return u"flac"_s;
    if (bytes.sliced(std::min<qsizetype>(4, bytes.size())).startsWith("ftyp"))
        return u"m4a"_s;
    if (bytes.startsWith('\xff') && (second & 0xf6) == 0xf0)
        return u"aac"_s;
    return std::nullopt;
}

} // namespace

std::optional<SpeechAudio> SpeechAudio::of(const QString &audio, const std::optional<QString> &encoding) {
    const auto decoded = QByteArray::fromBase64Encoding(audio.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.isEmpty())
        return std::nullopt;
    const bool isNamed = encoding && !encoding->trimmed().isEmpty();
    const auto format = isNamed ? named(*encoding) : recognised(decoded.decoded);
    if (!format)
        return std::nullopt;
    return SpeechAudio{.bytes = decoded.decoded, .format = *format};
}

} // namespace lmp
