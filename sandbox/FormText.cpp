#include "FormText.h"

namespace lmp::sandbox {

namespace {

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::string decoded(std::string_view text, bool plusIsBlank) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 && hexValue(text[i + 2]) >= 0) {
            result += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            i += 2;
        } else {
            result += text[i] == '+' && plusIsBlank ? ' ' : text[i];
        }
    }
    return result;
}

} // namespace

FormFields parseFields(std::string_view text, bool plusIsBlank) {
    FormFields fields;
    while (!text.empty()) {
        const auto end = text.find('&');
        const auto pair = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        const auto equals = pair.find('=');
        const auto value = equals == std::string_view::npos ? std::string_view() : pair.substr(equals + 1);
        if (!pair.empty())
            fields.try_emplace(decoded(pair.substr(0, equals), plusIsBlank), decoded(value, plusIsBlank));
    }
    return fields;
}

bool isUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t size = lead < 0x80   ? 1
                                 : lead < 0xC2 ? 0
                                 : lead < 0xE0 ? 2
                                 : lead < 0xF0 ? 3
                                 : lead < 0xF5 ? 4
                                               : 0;
        if (size == 0 || i + size > text.size())
            return false;
        unsigned int point = size == 1 ? lead : lead & (0xFFU >> (size + 1));
        for (std::size_t k = 1; k < size; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0U) != 0x80U)
                return false;
            point = (point << 6) | (next & 0x3FU);
        }
        const bool overlong = (size == 3 && point < 0x800) || (size == 4 && point < 0x10000);
        if (overlong || (point >= 0xD800 && point <= 0xDFFF) || point > 0x10FFFF)
            return false;
        i += size;
    }
    return true;
}

std::string percentEncoded(std::string_view text) {
    static constexpr char hex[] = "0123456789ABCDEF";
    std::string result;
    for (const unsigned char c : text) {
        const bool plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' ||
                           c == '_' || c == '.' || c == '~';
        if (plain)
            result += static_cast<char>(c);
        else
            result.append({'%', hex[c >> 4], hex[c & 15]});
    }
    return result;
}

std::string htmlEscaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

} // namespace lmp::sandbox
