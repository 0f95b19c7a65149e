// Percent-encoding: reading query strings and form bodies, and writing values into URLs. Pure functions; any thread.
// Malformed escapes stand for themselves.
#pragma once
#include <map>
#include <string>
#include <string_view>

namespace lmp::sandbox {

using FormFields = std::map<std::string, std::string>;

/// Names and values of `text`; the first of a repeated name counts. A plus sign is a blank only in form bodies: ids in
/// query strings arrive as they stand.
FormFields parseFields(std::string_view text, bool plusIsBlank);

/// False for bytes that are no UTF-8 text: echoed in an answer they would spoil its JSON.
bool isUtf8(std::string_view text);

/// `text` with everything but unreserved characters escaped.
std::string percentEncoded(std::string_view text);

/// `text` safe inside HTML content and quoted attributes.
std::string htmlEscaped(std::string_view text);

} // namespace lmp::sandbox
