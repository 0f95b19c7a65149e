// Reads the fields of a request's JSON object and names the field in the refusal when one is missing or of the wrong
// type. Null counts as absent. Borrows the object, so it must not outlive it; any thread.
#pragma once
#include <boost/json.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lmp::sandbox {

/// Parses a request body that must be one JSON object, of bounded depth. Throws SandboxFailure 400 "bad_json".
boost::json::object parseJsonObject(std::string_view body);

class JsonFields {
public:
    static constexpr std::size_t anyLength = static_cast<std::size_t>(-1);

    /// `where` is put before the field's name in refusals, e.g. "messages[3].".
    explicit JsonFields(const boost::json::object &object, std::string where = {});

    /// All of these throw SandboxFailure 400 naming the field; lengths are in bytes.
    std::string text(std::string_view key, std::size_t maxLength = 4096) const;
    std::optional<std::string> optionalText(std::string_view key, std::size_t maxLength = 4096) const;
    std::optional<std::int64_t> optionalInteger(std::string_view key) const;
    std::optional<bool> optionalBool(std::string_view key) const;
    const boost::json::array &list(std::string_view key) const;
    const boost::json::object &child(std::string_view key) const;

private:
    const boost::json::value *find(std::string_view key) const;
    std::string name(std::string_view key) const;

    const boost::json::object &m_object;
    std::string m_where;
};

} // namespace lmp::sandbox
