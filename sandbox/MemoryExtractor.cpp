#include "MemoryExtractor.h"

#include "ChineseText.h"

#include <algorithm>
#include <array>
#include <optional>

namespace lmp::sandbox {

namespace {

constexpr std::size_t longestMemory = 60;
/// Beyond this a text is pasted material rather than something said about oneself, and each clause is looked up in all
/// of it.
constexpr std::size_t longestText = 8 * 1024;

/// The text behind the first of `openings` that `clause` holds at its beginning or after a small word.
std::optional<std::string> behind(std::string_view clause, const std::vector<std::string_view> &openings) {
    for (const auto opening : openings) {
        const auto at = clause.find(opening);
        // "他说我叫…" or a quotation is somebody else's; a few lead-in characters are fine.
        if (at != std::string_view::npos && at <= 12)
            return trimmed(clause.substr(at + opening.size()));
    }
    return std::nullopt;
}

bool isQuestion(std::string_view text, std::string_view clause) {
    return containsAnyOf(clause, {"什么", "哪", "谁", "吗", "么", "呢", "怎么", "多少"}) ||
           contains(text, std::string(clause) + "？") || contains(text, std::string(clause) + "?");
}

void add(std::vector<TwinMemory> &found, std::string slot, const std::string &prefix, const std::string &value,
         const char *truth) {
    if (value.empty() || characterCount(value) > longestMemory)
        return;
    TwinMemory memory{std::move(slot), prefix + value, truth};
    if (std::find(found.begin(), found.end(), memory) == found.end())
        found.push_back(std::move(memory));
}

std::string withoutEnding(std::string value, const std::vector<std::string_view> &endings) {
    for (const auto ending : endings)
        if (value.ends_with(ending) && value.size() > ending.size())
            value.resize(value.size() - ending.size());
    return value;
}

void fromName(const std::string &clause, std::vector<TwinMemory> &found) {
    const auto name = behind(clause, {"我叫做", "我叫", "我的名字是", "我名字叫", "叫我"});
    static const std::vector<std::string_view> notNames{"你", "他", "她", "了", "不", "过", "车", "外卖", "它"};
    if (!name || std::any_of(notNames.begin(), notNames.end(), [&](auto start) { return name->starts_with(start); }))
        return;
    const auto plain = withoutEnding(*name, {"就好", "就行", "吧", "啦", "哦", "呀", "就可以"});
    if (characterCount(plain) <= 16)
        add(found, "name", "叫", plain, "fact");
}

void fromTastes(const std::string &clause, std::vector<TwinMemory> &found) {
    if (const auto dislike = behind(clause, {"我不喜欢", "我讨厌", "我不爱吃", "我很讨厌", "我不太喜欢"})) {
        if (!dislike->starts_with("你"))
            add(found, {}, "不喜欢", withoutEnding(*dislike, {"了", "啊", "呀"}), "pref");
        return;
    }
    const auto like =
        behind(clause, {"我很喜欢", "我最喜欢", "我特别喜欢", "我也喜欢", "我喜欢", "我超喜欢", "我一直喜欢"});
    if (like && !like->starts_with("你") && !like->starts_with("上"))
        add(found, {}, "喜欢", withoutEnding(*like, {"了", "啊", "呀"}), "pref");
}

void fromPlaces(const std::string &clause, std::vector<TwinMemory> &found) {
    for (const std::string_view ending : {"工作", "上班"}) {
        const auto start = clause.find("我在");
        const auto end = clause.find(ending);
        if (start != std::string::npos && end != std::string::npos && end > start + 6) {
            add(found, "work", "在", trimmed(clause.substr(start + 6, end - start - 6)) + "工作", "fact");
            return;
        }
    }
    if (const auto home = behind(clause, {"我现在住在", "我住在", "我家在", "我家住"}))
        add(found, "home", "住在", withoutEnding(*home, {"了", "啊", "呀"}), "fact");
}

void fromLife(const std::string &clause, std::vector<TwinMemory> &found) {
    if (const auto birthday = behind(clause, {"我的生日是", "我生日是", "我生日在"}))
        add(found, "birthday", "生日是", *birthday, "fact");
    if (const auto role = behind(clause, {"我是一名", "我是一个", "我是一位", "我是做", "我的工作是", "我的职业是"}))
        add(found, "role", "职业是", withoutEnding(*role, {"的"}), "fact");
    for (const std::string_view opening : {"我养了", "我家有一只", "我有一只", "我有一条"})
        if (const auto pet = behind(clause, {opening}))
            add(found, {}, "养了",
                contains(opening, "一条")   ? "一条" + *pet
                : contains(opening, "一只") ? "一只" + *pet
                                            : *pet,
                "fact");
}

/// What stands behind an outright "remember", to the end of the text.
std::optional<std::string> command(std::string_view text) {
    for (const std::string_view opening :
         {"请你记住", "请记住", "帮我记住", "帮我记一下", "记一下", "你要记住", "记住"}) {
        const auto start = trimmed(text);
        if (!start.starts_with(opening))
            continue;
        auto rest = trimmed(std::string_view(start).substr(opening.size()));
        const bool question = rest.starts_with("了") || rest.ends_with("吗") || rest.ends_with("没有");
        return question || rest.empty() ? std::nullopt : std::optional(rest);
    }
    return std::nullopt;
}

} // namespace

std::vector<TwinMemory> MemoryExtractor::fromText(std::string_view text) {
    std::vector<TwinMemory> found;
    if (text.size() > longestText)
        return found;
    for (const auto &clause : clauses(text)) {
        if (isQuestion(text, clause))
            continue;
        fromName(clause, found);
        fromTastes(clause, found);
        fromPlaces(clause, found);
        fromLife(clause, found);
    }
    // "记住：我叫小林" is the name; only what fits nowhere else is kept as it was said.
    if (const auto asked = command(text); asked && found.empty())
        add(found, {}, {}, shortened(*asked, longestMemory - 1), "fact");
    return found;
}

} // namespace lmp::sandbox
