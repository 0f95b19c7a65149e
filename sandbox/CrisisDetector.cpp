#include "CrisisDetector.h"

#include <initializer_list>

namespace lmp::sandbox {

namespace {

/// ASCII in lower case, every kind of blank and the usual joiners gone from Chinese, so that "想 死" is found too.
std::string folded(std::string_view text, bool keepBlanks) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto rest = text.substr(i);
        const bool wide = rest.starts_with("\xE3\x80\x80") || rest.starts_with("\xE2\x80\x8B");
        if (wide) {
            i += 2;
            continue;
        }
        if (rest.starts_with("\xE2\x80\x99")) { // a typographic apostrophe
            result += '\'';
            i += 2;
            continue;
        }
        const char c = text[i];
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
            if (keepBlanks && !result.ends_with(' '))
                result += ' ';
        } else {
            result += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        }
    }
    return result;
}

/// One pass for each phrase, however long the text and however often it occurs.
void removeAll(std::string &text, std::initializer_list<std::string_view> phrases) {
    for (const auto phrase : phrases) {
        std::string rest;
        std::size_t start = 0;
        for (auto at = text.find(phrase); at != std::string::npos; at = text.find(phrase, start)) {
            // Something has to stay in between, or removing could join two harmless halves.
            rest.append(text, start, at - start).append("|");
            start = at + phrase.size();
        }
        if (start > 0)
            text = rest.append(text, start, std::string::npos);
    }
}

bool containsAny(const std::string &text, std::initializer_list<std::string_view> phrases) {
    for (const auto phrase : phrases)
        if (text.find(phrase) != std::string::npos)
            return true;
    return false;
}

} // namespace

std::optional<std::string> CrisisDetector::layerOf(std::string_view text) {
    auto chinese = folded(text, false);
    removeAll(chinese, {"想死你",     "想死我了", "想死他",   "想死她",   "想死它",      "想死大家", "想死这",
                        "想死那",     "想死妈",   "想死爸",   "想死家",   "不想死",      "没想死",   "没有想死",
                        "跳楼价",     "跳楼机",   "自杀小队", "自杀式",   "自杀率",      "不会自杀", "没有自杀",
                        "没想过自杀", "不想自杀", "防自杀",   "预防自杀", "不会伤害自己"});
    auto english = folded(text, true);
    removeAll(english, {"suicide squad", "suicide prevention", "die laughing", "die of laughter", "not suicidal",
                        "don't want to die", "dont want to die"});
    if (containsAny(chinese,
                    {"想死",     "自杀",     "自尽",       "轻生",     "结束生命", "结束自己", "了结自己", "了断自己",
                     "自残",     "伤害自己", "割腕",       "跳楼",     "上吊",     "烧炭",     "吞药",     "写遗书",
                     "杀了自己", "杀死自己", "弄死我自己", "我要去死", "我想去死", "不如死了", "死了算了"}) ||
        containsAny(english, {"kill myself", "killing myself", "suicide", "suicidal", "want to die", "wanna die",
                              "end my life", "ending my life", "hurt myself", "hurting myself", "harm myself",
                              "self-harm", "self harm", "cut myself", "better off dead"}))
        return "acute";
    if (containsAny(chinese, {"不想活", "活不下去", "活够了", "活着没意思", "活着没有意义", "活着好累", "没有活下去",
                              "消失就好了", "从这个世界消失"}) ||
        containsAny(english, {"don't want to live", "dont want to live", "no reason to live", "can't go on living",
                              "not worth living"}))
        return "elevated";
    return std::nullopt;
}

} // namespace lmp::sandbox
