#include "ChineseText.h"

#include <algorithm>
#include <array>

namespace lmp::sandbox {

namespace {

constexpr std::array<std::string_view, 32> punctuation{" ", "\t", "\n", "\r", "，", "。", "！", "？", "；", "：", "、",
                                                       "…", "～", "「", "」", "“",  "”",  "（", "）", "　", ",",  ".",
                                                       "!", "?",  ";",  ":",  "~",  "(",  ")",  "\"", "—",  "'"};
constexpr std::array<std::string_view, 12> clauseEnds{"，", "。", "！", "？", "；", "…",
                                                      "\n", ",",  "!",  "?",  ";",  ". "};
constexpr std::array<std::string_view, 36> everydayMarks{
    "喜欢", "我们", "你们", "什么", "怎么", "今天", "昨天", "明天", "现在", "一个", "没有", "觉得",
    "知道", "可以", "不是", "就是", "这个", "那个", "自己", "有点", "是不", "为什", "工作", "因为",
    "所以", "但是", "还是", "时候", "一下", "一点", "事情", "东西", "想要", "不想", "记得", "住在"};

bool isWordByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool isPunctuation(std::string_view character) {
    return std::find(punctuation.begin(), punctuation.end(), character) != punctuation.end();
}

} // namespace

std::vector<std::string_view> characters(std::string_view text) {
    std::vector<std::string_view> result;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        std::size_t size = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        size = std::min(size, text.size() - i);
        result.push_back(text.substr(i, size));
        i += size;
    }
    return result;
}

std::size_t characterCount(std::string_view text) {
    return characters(text).size();
}

std::string shortened(std::string_view text, std::size_t count) {
    const auto all = characters(text);
    if (all.size() <= count)
        return std::string(text);
    const auto &last = all[count];
    return std::string(text.substr(0, static_cast<std::size_t>(last.data() - text.data()))) + "…";
}

std::string trimmed(std::string_view text) {
    const auto all = characters(text);
    std::size_t first = 0;
    std::size_t last = all.size();
    while (first < last && isPunctuation(all[first]))
        ++first;
    while (last > first && isPunctuation(all[last - 1]))
        --last;
    std::string result;
    for (auto i = first; i < last; ++i)
        result += all[i];
    return result;
}

std::vector<std::string> clauses(std::string_view text) {
    std::vector<std::string> result;
    std::size_t start = 0;
    const auto close = [&](std::size_t end) {
        if (auto clause = trimmed(text.substr(start, end - start)); !clause.empty())
            result.push_back(std::move(clause));
    };
    for (std::size_t i = 0; i < text.size();) {
        const auto end = std::find_if(clauseEnds.begin(), clauseEnds.end(),
                                      [&](std::string_view mark) { return text.substr(i).starts_with(mark); });
        if (end == clauseEnds.end()) {
            ++i;
            continue;
        }
        close(i);
        i += end->size();
        start = i;
    }
    close(text.size());
    return result;
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

bool containsAnyOf(std::string_view text, const std::vector<std::string_view> &parts) {
    return std::any_of(parts.begin(), parts.end(), [&](std::string_view part) { return contains(text, part); });
}

std::set<std::string> topicMarks(std::string_view text) {
    std::set<std::string> marks;
    std::string word;
    std::string_view previous;
    const auto closeWord = [&] {
        if (word.size() > 2)
            marks.insert(word);
        word.clear();
    };
    for (const auto character : characters(text)) {
        if (character.size() == 1 && isWordByte(character[0])) {
            word +=
                character[0] >= 'A' && character[0] <= 'Z' ? static_cast<char>(character[0] - 'A' + 'a') : character[0];
            previous = {};
            continue;
        }
        closeWord();
        const bool ideograph = character.size() >= 3 && !isPunctuation(character);
        if (ideograph && !previous.empty())
            marks.insert(std::string(previous) + std::string(character));
        previous = ideograph ? character : std::string_view();
    }
    closeWord();
    std::erase_if(marks, [](const std::string &mark) {
        const bool everyday = std::find(everydayMarks.begin(), everydayMarks.end(), mark) != everydayMarks.end();
        return everyday || mark.starts_with("我") || mark.starts_with("你") || mark.starts_with("的") ||
               mark.starts_with("了") || mark.ends_with("的") || mark.ends_with("了") || mark.ends_with("我") ||
               mark.ends_with("你") || mark.ends_with("吗") || mark.starts_with("很") || mark.starts_with("在");
    });
    return marks;
}

std::vector<std::string> streamPieces(std::string_view text) {
    std::vector<std::string> pieces;
    const auto all = characters(text);
    for (std::size_t i = 0; i < all.size();) {
        // Two to four characters: uneven, as a model's tokens are.
        const std::size_t size = std::min<std::size_t>(2 + (i * 7 + 3) % 3, all.size() - i);
        std::string piece;
        for (std::size_t k = 0; k < size; ++k)
            piece += all[i + k];
        pieces.push_back(std::move(piece));
        i += size;
    }
    return pieces;
}

} // namespace lmp::sandbox
