#include "dev/DevSessionRecord.h"
#include "dev/DevTranscriptItem.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace dev_item;

/// The files of older versions are read by newer ones, so their text is fixed.
TEST(DevRecordsTest, TranscriptItemsAreLinesWithOneKey) {
    struct Row {
        DevTranscriptItem::Case item;
        QByteArray text;
    };
    const auto at = u"2026-11-21T02:04:26.502Z"_s;
    for (const auto &[item, text] : {
             Row{User{u"1"_s, u"hi\n"_s, at}, R"({"user":{"id":"1","text":"hi\n","at":"2026-11-21T02:04:26.502Z"}})"},
             Row{Assistant{.id = u"1"_s}, R"({"assistant":{"id":"1","text":"","at":""}})"},
             Row{Tool{.id = u"1"_s, .name = u"Bash"_s, .output = u"x"_s, .isError = true},
                 R"({"tool":{"id":"1","name":"Bash","summary":"","input":"","output":"x","isError":true,"at":""}})"},
             Row{File{.path = u"a"_s, .kind = DevFileChangeKind::remove, .removed = 3},
                 R"({"file":{"id":"","path":"a","kind":"delete","removed":3,"at":""}})"},
             Row{Permission{.id = u"1"_s}, R"({"permission":{"id":"1","tool":"","summary":"","input":"","at":""}})"},
             Row{Turn{.usage = {.inputTokens = 1, .costUsd = 0.5}},
                 R"({"turn":{"id":"","usage":{"inputTokens":1,"costUsd":0.5},"at":""}})"},
             Row{Failure{.reason = u"r"_s}, R"({"failure":{"id":"","reason":"r","at":""}})"},
             Row{Notice{.text = u"n"_s}, R"({"notice":{"id":"","text":"n","at":""}})"},
         }) {
        EXPECT_EQ(DevTranscriptItem{item}.encode(), text);
        EXPECT_EQ(DevTranscriptItem::decode(text), DevTranscriptItem{item}) << text.toStdString();
    }
    for (const QByteArray text : {"{}", R"({"user":{},"turn":{}})", "[]"})
        EXPECT_EQ(DevTranscriptItem::decode(text).error(), u"Invalid number of keys found, expected one."_s);
    for (const QByteArray text : {R"({"newer":{}})", R"({"user":{"id":"1"}})", R"({"user":)"})
        EXPECT_FALSE(DevTranscriptItem::decode(text).has_value()) << text.toStdString();
}

TEST(DevRecordsTest, ASessionIsReadBack) {
    const DevSessionRecord record{.id = u"s"_s, .engine = DevEngineKind::codex, .cwd = u"/r"_s, .mode = DevMode::full};
    const auto text = Json::encode(record);
    EXPECT_EQ(
        text,
        R"({"id":"s","engine":"codex","cwd":"/r","title":"","createdAt":"","updatedAt":"","mode":"full","status":""})");
    EXPECT_EQ(Json::decode<DevSessionRecord>(text).value(), record);
}

} // namespace lmp
