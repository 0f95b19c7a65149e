#include "TwinResponder.h"
#include "MemoryExtractor.h"

#include <gmock/gmock.h>

namespace lmp::sandbox {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TwinContext contextOf(std::vector<std::string> turns, std::vector<TwinMemory> memories = {}) {
    TwinContext context;
    for (std::size_t i = 0; i < turns.size(); ++i) {
        if (i > 0)
            context.messages.push_back({"assistant", "嗯。（离线分身）"});
        context.messages.push_back({"user", turns[i]});
    }
    context.memories = std::move(memories);
    context.fresh = MemoryExtractor::fromText(context.userText());
    context.hour = 20;
    context.today = "2026年3月5日 星期四 20:05";
    return context;
}

const std::vector<TwinMemory> known{
    {"name", "叫小满", "fact"}, {"work", "在杭州工作", "fact"}, {"", "喜欢爬山", "pref"}, {"", "不喜欢香菜", "pref"}};

TEST(MemoryExtractorTest, OnlyWhatIsSaidOutright) {
    struct Case {
        const char *text;
        std::vector<TwinMemory> expected;
    };
    for (const auto &[text, expected] : std::vector<Case>{
             {"我叫小满，在杭州。", {{"name", "叫小满", "fact"}}},
             {"你好，我叫小满。我很喜欢下雨天！", {{"name", "叫小满", "fact"}, {"", "喜欢下雨天", "pref"}}},
             {"我不喜欢香菜", {{"", "不喜欢香菜", "pref"}}},
             {"我在一家书店工作", {{"work", "在一家书店工作", "fact"}}},
             {"我现在住在成都", {{"home", "住在成都", "fact"}}},
             {"记住：周三要交稿，别忘了", {{"", "周三要交稿，别忘了", "fact"}}},
             {"请记住我叫小满", {{"name", "叫小满", "fact"}}},
             {"我叫什么", {}},
             {"我喜欢什么？", {}},
             {"你猜我喜欢爬山？", {}},
             {"我喜欢你", {}},
             {"我叫了外卖", {}},
             {"你记住了吗", {}},
             {"记住了", {}},
             {"", {}}})
        EXPECT_EQ(MemoryExtractor::fromText(text), expected) << text;
}

TEST(MemoryExtractorTest, PastedTextIsNotAboutOneself) {
    std::string pasted = "我叫小林。";
    while (pasted.size() < 256 * 1024)
        pasted += "今天天气不错。";
    EXPECT_TRUE(MemoryExtractor::fromText(pasted).empty());
}

TEST(TwinResponderTest, SaysOnceThatItIsTheOfflineTwin) {
    EXPECT_THAT(TwinResponder::reply(contextOf({"今天下雨了"})).text, HasSubstr("离线分身"));
    EXPECT_THAT(TwinResponder::reply(contextOf({"今天下雨了", "还刮风"})).text, Not(HasSubstr("离线分身")));
}

TEST(TwinResponderTest, EachIntentAnswersFromWhatIsThere) {
    struct Case {
        std::vector<std::string> turns;
        const char *expected;
        std::vector<TwinMemory> used;
    };
    for (const auto &[turns, expected, used] :
         std::vector<Case>{{{"你好"}, "小满，晚上好", {known[0], known[2]}},
                           {{"你记得我什么？"}, "不喜欢香菜", known},
                           {{"我叫什么"}, "你叫小满", {known[0]}},
                           {{"我在哪里工作"}, "在杭州工作", {known[1]}},
                           {{"我喜欢什么"}, "喜欢爬山，不喜欢香菜", {known[2], known[3]}},
                           {{"我住在哪"}, "还没说过住在哪里", {}},
                           {{"你是谁"}, "离线分身", {}},
                           {{"房东要涨租", "我刚才说了什么"}, "「房东要涨租」", {}},
                           {{"房东要涨租", "想换个地方", "我们聊了什么"}, "· 房东要涨租\n· 想换个地方", {}},
                           {{"现在几点了"}, "20:05", {}},
                           {{"我住在苏州"}, "我记下了：你住在苏州", {}},
                           {{"换工作还是再等等？"}, "「换工作」", {}},
                           {{"好累啊"}, "撑了一阵子", {}},
                           {{"周末又去爬山了"}, "喜欢爬山", {known[2]}},
                           {{"房东要涨租", "房东又打电话来"}, "前面说的「房东要涨租」", {}},
                           {{"帮我写一段代码"}, "答不好", {}},
                           {{"谢谢你"}, "客气", {}},
                           {{"窗台上的薄荷开花了"}, "「窗台上的薄荷开花了」", {}},
                           {{"？？"}, "我在听", {}}}) {
        const auto reply = TwinResponder::reply(contextOf(turns, known));
        EXPECT_THAT(reply.text, HasSubstr(expected)) << turns.back();
        EXPECT_EQ(reply.used, used) << turns.back();
    }
}

TEST(TwinResponderTest, WithNothingKnownItSaysSo) {
    EXPECT_THAT(TwinResponder::reply(contextOf({"你记得我什么"})).text, HasSubstr("还没有记住"));
    EXPECT_THAT(TwinResponder::reply(contextOf({"我叫什么"})).text, HasSubstr("还没告诉过我"));
}

TEST(TwinResponderTest, CrisisComesBeforeEverythingAndBriefIsShorter) {
    auto crisis = contextOf({"你好，我想死"}, known);
    crisis.crisisLayer = "acute";
    EXPECT_THAT(TwinResponder::reply(crisis).text, HasSubstr("真人"));
    auto context = contextOf({"周末又去爬山了"}, known);
    const auto whole = TwinResponder::reply(context).text;
    context.brief = true;
    EXPECT_LT(TwinResponder::reply(context).text.size(), whole.size());
}

} // namespace

} // namespace lmp::sandbox
