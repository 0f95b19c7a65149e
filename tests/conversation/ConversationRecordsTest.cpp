#include "conversation/ConversationMessageDelivery.h"
#include "conversation/ConversationSendScope.h"
#include "conversation/ConversationTexts.h"
#include "conversation/ConversationTitle.h"
#include "conversation/RetryAnswer.h"
#include "core/Json.h"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

namespace lmp {

using namespace Qt::StringLiterals;
using State = ConversationDeliveryState;

namespace {

ConversationDTO conversation(std::initializer_list<std::tuple<QString, TalkRole, std::optional<State>>> messages) {
    ConversationDTO made;
    for (const auto &[id, role, state] : messages) {
        ConvMessageDTO message;
        message.id = id;
        message.role = role;
        message.deliveryState = state;
        made.messages.push_back(message);
    }
    return made;
}

} // namespace

TEST(ConversationRecordsTest, NothingTheServiceSentIsLostOnTheWayBack) {
    const QByteArray text = R"({"id":"c","title":"t","mode":"m","pinned":true,"revision":9007199254740993,"messages":[
        {"id":"1","role":"user","text":"\u0000\ud83d\ude00","deliveryState":"submitted","reactions":[{"by":"x"}]},
        {"id":"2","role":"twin","text":"","used":[{"content":"c","truth":"later","locator":"p3"}],"requestId":"r",
         "parts":[{"id":"p","kind":"k","name":"n","mimeType":"a/b","width":7}],"replyToUserMessageId":"1",
         "selection":{"workId":"w","label":"l","range":[1,2.5]},"workId":"w"}],
        "workspace":{"works":[{"id":"w","kind":"k","title":"t","status":"s","versions":[
            {"id":"v","label":"l","createdAt":"d","thumb":"u"}],"costDeci":15,"referenceOnly":false,"stage":"x"}],
            "folders":[{"id":"f","name":"n","color":"red"}],"layout":{"columns":2}}})";
    const auto record = Json::decode<ConversationDTO>(text);
    ASSERT_TRUE(record) << record.error().describe(u"ConversationDTO"_s).toStdString();
    EXPECT_EQ(record->revision, 9007199254740993);
    EXPECT_EQ(record->messages[1].used->front().truth, u"later"_s);
    EXPECT_EQ(record->workspace->works[0].costDeci, 15);
    const QByteArray back = Json::encode(*record);
    EXPECT_EQ(boost::json::parse(back.toStdString()), boost::json::parse(text.toStdString()));
    EXPECT_EQ(Json::decode<ConversationDTO>(back), *record);

    const auto bare = Json::decode<ConversationDTO>(R"({"id":"c","title":"","messages":[],"mode":null})");
    ASSERT_TRUE(bare);
    EXPECT_FALSE(bare->rest.keys);
    EXPECT_EQ(Json::encode(*bare), R"({"id":"c","title":"","messages":[]})");
}

TEST(ConversationMessageDeliveryTest, TheTwinSeesWhatWasDeliveredAndWhatIsSent) {
    const auto made = conversation({{u"1"_s, TalkRole::user, State::submitted},
                                    {u"2"_s, TalkRole::twin, {}},
                                    {u"3"_s, TalkRole::user, State::unknown},
                                    {u"4"_s, TalkRole::twin, {}},
                                    {u"5"_s, TalkRole::user, State::failed},
                                    {u"6"_s, TalkRole::user, State::pending},
                                    {u"7"_s, TalkRole::user, State::pending}});
    QStringList seen;
    for (const auto &message : ConversationMessageDelivery::context(made, u"7"_s))
        seen << message.id;
    EXPECT_EQ(seen, (QStringList{u"1"_s, u"2"_s, u"4"_s, u"7"_s}));
}

TEST(ConversationMessageDeliveryTest, StatesAndRecovery) {
    auto made = conversation({{u"1"_s, TalkRole::user, State::pending}, {u"2"_s, TalkRole::user, {}}});
    const auto before = made;
    EXPECT_FALSE(ConversationMessageDelivery::setState(made, u"9"_s, State::failed));
    EXPECT_EQ(made, before);
    EXPECT_TRUE(ConversationMessageDelivery::recover(made));
    EXPECT_EQ(made.messages[0].deliveryState, State::unknown);
    EXPECT_FALSE(made.messages[1].deliveryState);
    EXPECT_FALSE(ConversationMessageDelivery::recover(made));
    EXPECT_TRUE(ConversationMessageDelivery::setState(made, u"2"_s, State::failed));
    EXPECT_EQ(made.messages[1].deliveryState, State::failed);
}

TEST(RetryAnswerTest, IdsAndRepetition) {
    struct Case {
        QString id;
        bool taken;
    };
    for (const auto &[id, taken] : std::initializer_list<Case>{{u""_s, false},
                                                               {u"   "_s, false},
                                                               {u" \r\n\t"_s, false},
                                                               {QString(49, u'a'), false},
                                                               {QString(48, u'a'), true},
                                                               {u"😀"_s.repeated(24), true},
                                                               {u"😀"_s.repeated(24) + u'a', false},
                                                               {u"汉"_s.repeated(48), true}}) {
        auto made = conversation({{u"1"_s, TalkRole::user, State::submitted}});
        const auto before = made;
        RetryResp answer{id, u"新"_s, QList<UsedMemory>{{u"c"_s, u"fact"_s, {}}}, u"r"_s, true};
        const auto applied = RetryAnswer::apply(made, answer, u"1"_s);
        EXPECT_EQ(applied.has_value(), taken) << id.toStdString();
        if (!taken) {
            EXPECT_EQ(applied.error().reason, ConversationTexts::retryWithoutMessageId());
            EXPECT_EQ(made, before);
            continue;
        }
        ASSERT_EQ(made.messages.size(), 2);
        EXPECT_EQ(made.messages[1].role, TalkRole::twin);
        EXPECT_EQ(made.messages[1].text, u"新"_s);
        EXPECT_EQ(made.messages[1].replyToUserMessageId, u"1"_s);
        const auto once = made;
        EXPECT_TRUE(RetryAnswer::apply(made, answer, u"1"_s));
        EXPECT_EQ(made, once) << "the same answer again changes nothing";
        const std::function<void(RetryResp &)> changes[] = {
            [](RetryResp &r) { r.text = u"别的"_s; },
            [](RetryResp &r) { r.requestId = u"s"_s; },
            [](RetryResp &r) { r.usedMemories.reset(); },
            [](RetryResp &r) { r.messageId = u"1"_s; },
        };
        for (const auto &change : changes) {
            auto other = answer;
            change(other);
            EXPECT_EQ(RetryAnswer::apply(made, other, u"1"_s).error().reason, ConversationTexts::retryMismatch());
            EXPECT_EQ(made, once);
        }
    }
}

TEST(ConversationSendScopeTest, StoredTextAndConfirmation) {
    for (const auto value :
         {ConversationSendScope::discussion, ConversationSendScope::modify, ConversationSendScope::related})
        EXPECT_EQ(ConversationSendScope::fromText(ConversationSendScope(value).text()), value);
    EXPECT_FALSE(ConversationSendScope::fromText(u"other"_s));
    EXPECT_FALSE(ConversationSendScope::fromText({}));

    ConversationSendScope::Confirmation confirmed;
    confirmed.accountID = u"u"_s;
    confirmed.targetSnapshot.emplace();
    EXPECT_FALSE(confirmed.staleAgainst(confirmed));
    using Confirmation = ConversationSendScope::Confirmation;
    const std::function<void(Confirmation &)> changes[] = {
        [](Confirmation &c) { c.accountID += u'x'; },
        [](Confirmation &c) { c.conversationID += u'x'; },
        [](Confirmation &c) { c.credential = u"x"_s; },
        [](Confirmation &c) { c.incognito = true; },
        [](Confirmation &c) { c.input.text = u"x"_s; },
        [](Confirmation &c) { c.targetSnapshot->currentVersionId = u"x"_s; },
        [](Confirmation &c) { c.ownerID = u"x"_s; },
    };
    for (const auto &change : changes) {
        auto now = confirmed;
        change(now);
        EXPECT_EQ(confirmed.staleAgainst(now), ConversationTexts::confirmationStale());
    }
}

TEST(ConversationTitleTest, CutBetweenCharacters) {
    EXPECT_EQ(ConversationTitle::of(u"  你好 \n再见"_s), u"你好"_s);
    EXPECT_EQ(ConversationTitle::of(u"好"_s.repeated(24)), u"好"_s.repeated(24));
    EXPECT_EQ(ConversationTitle::of(u"👩‍👩‍👧"_s.repeated(30)), u"👩‍👩‍👧"_s.repeated(24) + u'…');
}

} // namespace lmp
