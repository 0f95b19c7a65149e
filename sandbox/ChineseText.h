// Small helpers for cutting and comparing Chinese text in UTF-8. They never split a character. Pure; any thread.
#pragma once
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace lmp::sandbox {

/// The single characters (code points) of `text`; stray bytes count as one each.
std::vector<std::string_view> characters(std::string_view text);
std::size_t characterCount(std::string_view text);
/// At most `count` characters, with an ellipsis when something was left out.
std::string shortened(std::string_view text, std::size_t count);
/// Blanks, line ends and Chinese or Latin punctuation cut from both ends.
std::string trimmed(std::string_view text);
/// The parts between sentence punctuation and line ends, trimmed, none empty.
std::vector<std::string> clauses(std::string_view text);
bool contains(std::string_view text, std::string_view part);
bool containsAnyOf(std::string_view text, const std::vector<std::string_view> &parts);
/// Pairs of neighbouring Chinese characters and whole Latin words, without the ones that occur everywhere: what two
/// texts about the same thing have in common.
std::set<std::string> topicMarks(std::string_view text);
/// Pieces of a few characters, as a reply is streamed.
std::vector<std::string> streamPieces(std::string_view text);

} // namespace lmp::sandbox
