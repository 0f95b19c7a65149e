#include "CrisisDirectory.h"

#include <map>
#include <vector>

namespace lmp::sandbox {

namespace {

struct Entry {
    const char *name;
    const char *phone;
    const char *note;
};

const std::map<std::string, std::vector<Entry>> &regions() {
    static const std::map<std::string, std::vector<Entry>> table{
        {"CN",
         {{"全国统一心理援助热线", "12356", "心理援助"},
          {"急救", "120", "身体有危险时"},
          {"报警", "110", "人身有危险时"}}},
        {"HK",
         {{"情绪通精神健康支援热线", "18111", "全天"},
          {"撒玛利亚防止自杀会", "23892222", "全天"},
          {"紧急求助", "999", "警察、消防、救护"}}},
        {"MO", {{"明爱生命热线", "28525222", "全天"}, {"紧急求助", "999", "警察、消防、救护"}}},
        {"TW",
         {{"安心专线", "1925", "全天"},
          {"生命线", "1995", "全天"},
          {"救护与消防", "119", "身体有危险时"},
          {"报警", "110", "人身有危险时"}}},
        {"US", {{"988 自杀与危机生命线", "988", "全天，可短信"}, {"紧急求助", "911", "警察、消防、救护"}}},
        {"CA", {{"988 自杀危机热线", "988", "全天，可短信"}, {"紧急求助", "911", "警察、消防、救护"}}},
        {"GB", {{"Samaritans", "116123", "全天，免费"}, {"紧急求助", "999", "警察、消防、救护"}}},
        {"IE", {{"Samaritans", "116123", "全天，免费"}, {"紧急求助", "112", "警察、消防、救护"}}},
        {"AU", {{"Lifeline", "131114", "全天"}, {"紧急求助", "000", "警察、消防、救护"}}},
        {"NZ", {{"1737", "1737", "全天，可短信"}, {"紧急求助", "111", "警察、消防、救护"}}},
        {"JP",
         {{"よりそいホットライン", "0120279338", "全天，可用中文"},
          {"急救与消防", "119", "身体有危险时"},
          {"报警", "110", "人身有危险时"}}},
        {"KR",
         {{"自杀预防热线", "109", "全天"}, {"急救与消防", "119", "身体有危险时"}, {"报警", "112", "人身有危险时"}}},
        {"SG",
         {{"Samaritans of Singapore", "1767", "全天"},
          {"救护", "995", "身体有危险时"},
          {"报警", "999", "人身有危险时"}}},
        {"DE", {{"TelefonSeelsorge", "08001110111", "全天，免费"}, {"紧急求助", "112", "消防、救护"}}},
        {"FR", {{"自杀预防热线", "3114", "全天，免费"}, {"紧急求助", "112", "警察、消防、救护"}}},
    };
    return table;
}

const std::map<std::string, const char *> &regionsByDialCode() {
    static const std::map<std::string, const char *> table{
        {"+86", "CN"}, {"+852", "HK"}, {"+853", "MO"}, {"+886", "TW"}, {"+44", "GB"}, {"+353", "IE"}, {"+61", "AU"},
        {"+64", "NZ"}, {"+81", "JP"},  {"+82", "KR"},  {"+65", "SG"},  {"+49", "DE"}, {"+33", "FR"}};
    return table;
}

std::string normalizedRegion(const std::string &region) {
    std::string text;
    for (const char c : region)
        text += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return text;
}

} // namespace

boost::json::object CrisisDirectory::list(const std::string &region) {
    const auto code = region.empty() ? std::string("CN") : normalizedRegion(region);
    const auto found = regions().find(code);
    boost::json::array items;
    if (found != regions().end())
        for (const auto &entry : found->second)
            items.push_back({{"name", entry.name}, {"phone", entry.phone}, {"note", entry.note}});
    const char *guidance = items.empty() ? "这个地区还没有清单。请联系当地紧急服务，或找一个你信任的人。"
                                         : "现在难受的话，先找一个真人说说话。身体有危险时，直接拨打急救或报警电话。";
    return {{"region", code},
            {"items", std::move(items)},
            {"guidance", guidance},
            {"verified", false},
            {"assumedRegion", region.empty()}};
}

boost::json::object CrisisDirectory::safetyBlock(const std::string &layer, const std::string &dialCode) {
    const auto known = regionsByDialCode().find(dialCode);
    // "+1" alone does not tell the countries of North America apart.
    const bool assumed = known == regionsByDialCode().end();
    const std::string region = !assumed ? known->second : dialCode == "+1" ? "US" : "CN";
    boost::json::array resources;
    for (const auto &entry : regions().at(region))
        resources.push_back({{"label", entry.name}, {"phone", entry.phone}});
    return {{"crisis", true},
            {"guidance", "你刚才说的话让我很在意。你现在不必一个人扛着：请先联系一个真人，热线、急救，或你信任的人。"},
            {"resources", std::move(resources)},
            {"region", region},
            {"layer", layer},
            {"assumedRegion", assumed},
            {"resourcesVerified", false}};
}

} // namespace lmp::sandbox
