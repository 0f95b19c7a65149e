#pragma once

#include <QString>

#include <string_view>

namespace lmp::detail {

/// The text of a JSON string, whole: QString takes a byte order mark at the beginning for no part of the text.
inline QString jsonText(std::string_view utf8) {
    const QString text = QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
    return utf8.starts_with("\xef\xbb\xbf") ? QChar(0xfeff) + text : text;
}

} // namespace lmp::detail
