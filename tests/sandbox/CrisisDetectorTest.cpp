#include "CrisisDetector.h"
#include "CrisisDirectory.h"

#include <gtest/gtest.h>

namespace lmp::sandbox {

namespace {

TEST(CrisisDetectorTest, CriesForHelpAreHeard) {
    for (const auto *text : {"我想死", "想 死", "想\n死", "我真的想自杀", "昨天又割腕了", "我控制不住想伤害自己",
                             "死了算了", "I want to die", "i'm going to KILL  MYSELF", "feeling suicidal",
                             "我想死，你知道吗", "不想自杀，但是想伤害自己"})
        EXPECT_EQ(CrisisDetector::layerOf(text), "acute") << text;
    for (const auto *text : {"我不想活了", "真的活不下去了", "活着没意思", "I don’t want to live anymore"})
        EXPECT_EQ(CrisisDetector::layerOf(text), "elevated") << text;
}

TEST(CrisisDetectorTest, EverydayWordsAreNot) {
    for (const auto *text :
         {"笑死我了", "今天累死了", "想死你了", "我想死你啦", "想死妈妈做的菜了", "饿死了，吃什么", "这衣服跳楼价",
          "看了自杀小队", "我不想死，我想好好活", "die laughing", "suicide squad", "我喜欢生活", ""})
        EXPECT_EQ(CrisisDetector::layerOf(text), std::nullopt) << text;
}

TEST(CrisisDirectoryTest, RegionsAreListedAndNeverCalledVerified) {
    const auto assumed = CrisisDirectory::list("");
    EXPECT_EQ(assumed.at("region"), "CN");
    EXPECT_EQ(assumed.at("assumedRegion"), true);
    const auto given = CrisisDirectory::list("us");
    EXPECT_EQ(given.at("region"), "US");
    EXPECT_EQ(given.at("assumedRegion"), false);
    EXPECT_EQ(given.at("items").at(0).at("phone"), "988");
    const auto unknown = CrisisDirectory::list("ZZ");
    EXPECT_TRUE(unknown.at("items").as_array().empty());
    for (const auto &list : {assumed, given, unknown})
        EXPECT_EQ(list.at("verified"), false);
}

TEST(CrisisDirectoryTest, TheRegionIsGuessedFromTheDialCode) {
    struct Case {
        const char *dialCode;
        const char *region;
        bool assumed;
    };
    for (const auto &[dialCode, region, assumed] : {Case{"+86", "CN", false},
                                                    {"+852", "HK", false},
                                                    {"+1", "US", true},
                                                    {"", "CN", true},
                                                    {"+999", "CN", true}}) {
        const auto block = CrisisDirectory::safetyBlock("acute", dialCode);
        EXPECT_EQ(block.at("region"), region) << dialCode;
        EXPECT_EQ(block.at("assumedRegion"), assumed) << dialCode;
        EXPECT_FALSE(block.at("resources").as_array().empty()) << dialCode;
    }
}

} // namespace

} // namespace lmp::sandbox
