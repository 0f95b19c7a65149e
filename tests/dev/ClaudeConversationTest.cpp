#include "dev/claude/ClaudeConversation.h"

#include "dev/EventText.h"

#include <gmock/gmock.h>

namespace lmp {

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

QStringList told(ClaudeConversation &conversation) {
    QStringList texts;
    for (const auto &event : conversation.takeEvents())
        texts.append(eventText(event));
    return texts;
}

QStringList told(ClaudeConversation &conversation, const QByteArray &line) {
    conversation.take(line);
    return told(conversation);
}

std::vector<std::string> written(ClaudeConversation &conversation) {
    std::vector<std::string> lines;
    for (const auto &line : conversation.takeLines())
        lines.push_back(line.toStdString());
    return lines;
}

QByteArray question(const QByteArray &id, const QByteArray &tool, const QByteArray &input) {
    return R"({"type":"control_request","request_id":")" + id +
           R"(","request":{"subtype":"can_use_tool","tool_name":")" + tool + R"(","input":)" + input + "}}";
}

const QByteArray command = R"({"command":"make"})";

QByteArray init(const QByteArray &version) {
    return R"({"claude_code_version":")" + version +
           R"(","session_id":"s","model":"m","subtype":"init","type":"system"})";
}

} // namespace

/// What lines mean that are not in any recording, or that versions write differently.
TEST(ClaudeConversationTest, LinesBecomeEvents) {
    struct Row {
        QByteArray line;
        QStringList events;
    };
    for (
        const auto &[line, events] : {
            Row{R"({"type":"result","is_error":true,"usage":{"input_tokens":3}})",
                {u"failed 这一回合失败了（CLI 没说原因）"_s, u"done 3+-1"_s}},
            Row{R"({"type":"result","is_error":true,"errors":["[ede_diagnostic] x","No session"],"usage":[]})",
                {u"failed No session"_s, u"done -1+-1"_s}},
            Row{R"({"type":"result","is_error":false,"result":"x","usage":{"input_tokens":1e400,"output_tokens":"2"}})",
                {u"done -1+-1"_s}},
            Row{R"({"type":"user","message":{"content":[{"type":"tool_result","tool_use_id":"t","content":[{"type":"text",)"
                R"("text":"a"},{"type":"image"},{"type":"text","text":"b"}]}]}})",
                {u"result ab"_s}},
            Row{R"({"type":"user","message":{"role":"user","content":"words of the tool"},"isReplay":true})", {}},
            Row{R"({"type":"user","message":{"content":[{"type":"text","text":"[Request interrupted by user]"}]}})",
                {}},
            Row{R"({"type":"assistant","message":{"content":[{"type":"thinking","thinking":"hm"},7,null]}})", {}},
            Row{R"({"type":"system","subtype":"api_retry"})", {}},
            Row{R"({"type":"keep_alive"})", {}},
            Row{R"({"type":["assistant"]})", {}},
            Row{R"([1,2])", {}},
            Row{R"({"type":"assistant","mess)", {}},
            Row{"", {}},
        }) {
        ClaudeConversation conversation;
        EXPECT_EQ(told(conversation, line), events) << line.toStdString();
        EXPECT_THAT(written(conversation), IsEmpty()) << line.toStdString();
    }
}

TEST(ClaudeConversationTest, APermissionIsAnsweredByThePolicyOrTheUser) {
    ClaudeConversation conversation(u"/repo"_s, DevMode::readOnly);
    EXPECT_EQ(
        told(conversation, question("1", "Bash", command)),
        QStringList(
            u"notice 按当前档位挡下了 Bash：当前是只读档位，不能跑命令。用户切到「编辑自动」或「全自动」后再试。"_s));
    EXPECT_THAT(written(conversation), ElementsAre(HasSubstr(R"("interrupt":false)")));
    conversation.setMode(DevMode::acceptEdits);
    EXPECT_THAT(told(conversation, question("2", "Write", R"({"file_path":"/repo/a"})")), IsEmpty());
    EXPECT_THAT(written(conversation), ElementsAre(R"({"type":"control_response","response":{"subtype":"success",)"
                                                   R"("request_id":"2","response":{"behavior":"allow"}}})"));
    // A secret asks in every mode, whatever key names the path.
    conversation.setMode(DevMode::full);
    EXPECT_EQ(told(conversation, question("3", "NotebookEdit", R"({"notebook_path":"/repo/.env"})")),
              QStringList(u"asks NotebookEdit /repo/.env"_s));
    conversation.respond(u"3"_s, DevPermissionDecision::deny());
    conversation.respond(u"3"_s, DevPermissionDecision::allowOnce());
    EXPECT_THAT(written(conversation), ElementsAre(HasSubstr("用户拒绝了这次操作，换个做法或先问清楚。")));
    // For the session: the next one of its kind asks no more.
    conversation.setMode(DevMode::acceptEdits);
    EXPECT_EQ(told(conversation, question("4", "Bash", command)), QStringList(u"asks Bash make"_s));
    conversation.respond(u"4"_s, DevPermissionDecision::allowSession());
    EXPECT_THAT(told(conversation, question("5", "Bash", R"({"command":"make test"})")), IsEmpty());
    EXPECT_EQ(written(conversation).size(), 2U);
}

TEST(ClaudeConversationTest, AnOldVersionIsGivenItsInputBack) {
    struct Row {
        QByteArray version;
        bool given;
    };
    for (const auto &[version, given] : {Row{"2.1.197", true}, Row{"2.1.299 (Claude Code)", true},
                                         Row{"2.1.300", false}, Row{"2.10.1", false}, Row{"", false}}) {
        ClaudeConversation conversation(u"/repo"_s, DevMode::full);
        conversation.take(init(version));
        conversation.take(question("1", "Bash", R"({"command":"ls","n":1.0,"s":"\u00e9\n"})"));
        EXPECT_THAT(written(conversation),
                    ElementsAre(::testing::Conditional(
                        given, HasSubstr(R"("updatedInput":{"command":"ls","n":1.0,"s":"é\n"}}}})"),
                        HasSubstr(R"({"behavior":"allow"}}})"))))
            << version.toStdString();
    }
}

TEST(ClaudeConversationTest, AnInterruptionDeniesWhatIsAskedFirst) {
    ClaudeConversation conversation(u"/repo"_s);
    conversation.send(u"go"_s);
    conversation.take(question("1", "Bash", command));
    conversation.take(question("2", "Bash", command));
    conversation.take(question("3", "Bash", command));
    conversation.take(R"({"type":"control_cancel_request","request_id":"2"})");
    written(conversation);
    conversation.interrupt();
    EXPECT_THAT(written(conversation),
                ElementsAre(R"({"type":"control_response","response":{"subtype":"success","request_id":"1","response":)"
                            R"({"behavior":"deny","message":"用户中断","interrupt":true}}})",
                            HasSubstr(R"("request_id":"3")"),
                            R"({"type":"control_request","request_id":"lmp-1","request":{"subtype":"interrupt"}})"));
    // One that was under way is not put to the user any more.
    conversation.takeEvents();
    EXPECT_THAT(told(conversation, question("4", "Bash", command)), IsEmpty());
    EXPECT_THAT(written(conversation), ElementsAre(HasSubstr(R"("interrupt":true)")));
}

TEST(ClaudeConversationTest, AnUnknownRequestIsRefusedAndNothingElse) {
    ClaudeConversation conversation;
    EXPECT_THAT(
        told(conversation, R"({"type":"control_request","request_id":"9","request":{"subtype":"elicitation"}})"),
        IsEmpty());
    EXPECT_THAT(written(conversation),
                ElementsAre(R"({"type":"control_response","response":{"subtype":"error","request_id":"9",)"
                            R"("error":"unsupported by Lumenpair workbench"}})"));
}

TEST(ClaudeConversationTest, ASessionIsToldOnceUntilItsModelChanges) {
    ClaudeConversation conversation;
    const QByteArray other = R"({"type":"system","subtype":"init","session_id":"s","model":"n"})";
    EXPECT_EQ(told(conversation, init("3")) + told(conversation, init("3")) + told(conversation, other),
              (QStringList{u"session s m"_s, u"session s n"_s}));
}

} // namespace lmp
