#include "dev/DevPathForms.h"

#include <filesystem>
#include <vector>

namespace lmp {

namespace {

namespace fs = std::filesystem;

/// What the system takes for a path, and how many links it follows.
constexpr std::size_t maxPath = 4096;
constexpr int maxLinks = 40;

void addSegments(std::string_view path, std::vector<std::string_view> &segments) {
    while (!path.empty()) {
        const auto slash = path.find('/');
        const auto segment = path.substr(0, slash);
        path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
        if (segment == ".." && !segments.empty())
            segments.pop_back();
        else if (!segment.empty() && segment != "." && segment != "..")
            segments.push_back(segment);
    }
}

} // namespace

std::string DevPathForms::clean(std::string_view path, std::string_view folder) {
    const bool atHome = path.starts_with('~');
    std::vector<std::string_view> segments;
    if (!atHome && !path.starts_with('/'))
        addSegments(folder, segments);
    addSegments(path, segments);
    std::string cleaned;
    for (const auto segment : segments) {
        if (!(atHome && cleaned.empty()))
            cleaned += '/';
        cleaned += segment;
    }
    return cleaned.empty() ? "/" : cleaned;
}

std::optional<std::string> DevPathForms::resolved(std::string_view path, std::string_view folder) {
    if (path.size() + folder.size() >= maxPath || path.contains('\0'))
        return std::nullopt;
    fs::path place = fs::path(folder) / path;
    std::error_code error;
    for (int links = 0; links < maxLinks; ++links) {
        place = fs::weakly_canonical(place, error);
        if (error)
            return std::nullopt;
        // A link whose target is not there yet: writing through it makes the target.
        if (!fs::is_symlink(place, error))
            return place.string();
        place = place.parent_path() / fs::read_symlink(place, error);
    }
    return std::nullopt;
}

} // namespace lmp
