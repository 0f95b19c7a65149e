#pragma once

#include "core/JsonCodec.h"
#include "core/JsonText.h"

#include <boost/json/value.hpp>

namespace lmp {

/// What a call did to a file. In JSON "create", "modify", "delete".
enum class DevFileChangeKind { create, modify, remove };

template <>
struct JsonCodec<DevFileChangeKind> {
    static bool read(const boost::json::value &from, DevFileChangeKind &to) {
        const auto *text = from.if_string();
        for (const auto kind : {DevFileChangeKind::create, DevFileChangeKind::modify, DevFileChangeKind::remove}) {
            if (text && *text == name(kind)) {
                to = kind;
                return true;
            }
        }
        return false;
    }
    template <class Writer>
    static void write(DevFileChangeKind value, Writer &writer) {
        writer.write(detail::jsonText(name(value)));
    }
    /// "delete" is a word of the language, so the enumeration cannot spell it.
    static std::string_view name(DevFileChangeKind kind) {
        switch (kind) {
        case DevFileChangeKind::create:
            return "create";
        case DevFileChangeKind::modify:
            return "modify";
        case DevFileChangeKind::remove:
            break;
        }
        return "delete";
    }
};

} // namespace lmp
