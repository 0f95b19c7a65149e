#include "core/JsonWriter.h"

#include "core/JsonEncodingError.h"

#include <boost/json/serialize.hpp>

#include <cmath>

namespace lmp::detail {

void JsonWriter::writeRest(const JsonRest &rest, bool &first) {
    if (!rest.keys)
        return;
    writeMembers(*rest.keys, first);
}

void JsonWriter::writeReal(double value, bool marked) {
    if (!std::isfinite(value))
        throw JsonEncodingError("a number that JSON cannot hold");
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    text.append(digits, end - digits);
    // "-0" would be read back as a whole number, which has no sign.
    const bool negativeZero = value == 0 && std::signbit(value);
    if ((marked || negativeZero) && std::string_view(digits, end).find_first_of(".e") == std::string_view::npos)
        text += ".0";
}

void JsonWriter::writeString(const QString &value) {
    const QByteArray utf8 = value.toUtf8();
    writeEscaped(utf8);
}

void JsonWriter::writeEscaped(QByteArrayView utf8) {
    text += '"';
    const char *run = utf8.data();
    const char *const end = run + utf8.size();
    for (const char *at = run; at != end; ++at) {
        const auto c = static_cast<unsigned char>(*at);
        if (c >= 0x20 && c != '"' && c != '\\') [[likely]]
            continue;
        text.append(run, at - run);
        run = at + 1;
        switch (c) {
        case '"':
            text += "\\\"";
            break;
        case '\\':
            text += "\\\\";
            break;
        case '\n':
            text += "\\n";
            break;
        case '\r':
            text += "\\r";
            break;
        case '\t':
            text += "\\t";
            break;
        default: {
            static constexpr char hex[] = "0123456789abcdef";
            const char escape[] = {'\\', 'u', '0', '0', hex[c >> 4], hex[c & 15]};
            text.append(escape, sizeof escape);
        }
        }
    }
    text.append(run, end - run);
    text += '"';
}

void JsonWriter::writeValue(const boost::json::value &value) {
    if (const auto *object = value.if_object()) {
        text += '{';
        bool first = true;
        writeMembers(*object, first);
        text += '}';
    } else if (const auto *array = value.if_array()) {
        text += '[';
        for (bool first = true; const auto &element : *array) {
            if (!std::exchange(first, false))
                text += ',';
            writeValue(element);
        }
        text += ']';
    } else if (const auto *string = value.if_string()) {
        writeEscaped({string->data(), qsizetype(string->size())});
    } else if (const auto *real = value.if_double()) {
        // What came as a number beyond a double's range goes back as one; "Infinity" is no JSON.
        std::isfinite(*real) ? writeReal(*real, true) : void(text += *real < 0 ? "-1e999" : "1e999");
    } else {
        const std::string serialized = boost::json::serialize(value);
        text.append(serialized.data(), qsizetype(serialized.size()));
    }
}

void JsonWriter::writeMembers(const boost::json::object &object, bool &first) {
    for (const auto &[key, value] : object) {
        if (!std::exchange(first, false))
            text += ',';
        writeEscaped({key.data(), qsizetype(key.size())});
        text += ':';
        writeValue(value);
    }
}

} // namespace lmp::detail
