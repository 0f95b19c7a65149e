#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lmp {

/// Where a path leads from a folder. UTF-8 in and out; any thread but, for `resolved`, the UI thread's.
class DevPathForms {
public:
    /// The path once its dots and doubled slashes are worked out, as text. A leading ~ stays as it is.
    static std::string clean(std::string_view path, std::string_view folder);

    /// The same on disk, with symbolic links followed as far as there is something to follow. Reads the disk.
    /// @return none where that cannot be told: too long, a loop of links, a folder that may not be read. That it is not
    ///         there (yet) is no reason
    static std::optional<std::string> resolved(std::string_view path, std::string_view folder);
};

} // namespace lmp
