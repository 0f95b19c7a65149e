#include "TwinResponder.h"

#include "ChineseText.h"

#include <algorithm>

namespace lmp::sandbox {

namespace {

constexpr std::string_view signature = "离线分身";

std::string inQuotes(std::string_view text) {
    return "「" + std::string(text) + "」";
}

struct Feeling {
    std::vector<std::string_view> words;
    const char *echo;
    const char *question;
};

const std::vector<Feeling> &feelings() {
    static const std::vector<Feeling> table{
        {{"累", "疲惫", "加班", "熬夜"},
         "听起来你已经撑了一阵子了，先别急着要求自己。",
         "是身体累，还是心里那根弦松不下来？"},
        {{"难过", "伤心", "想哭", "哭了", "委屈", "失落"},
         "这种时候难受是正常的，不用急着好起来。",
         "最刺痛你的是哪一句话、哪一个瞬间？"},
        {{"焦虑", "紧张", "压力", "担心", "害怕", "慌"},
         "心里悬着的感觉很耗人。",
         "如果把担心的事写成一句话，最坏的那种会是什么？"},
        {{"生气", "气死", "愤怒", "烦", "讨厌死"},
         "换我也会有火气的，你的边界被碰到了。",
         "你最希望对方明白的是哪一点？"},
        {{"睡不着", "失眠"},
         "躺着却睡不着的时候，脑子会把小事放大。",
         "现在占着你脑子的是哪一件？说出来也许就轻一点。"},
        {{"无聊", "没意思", "没劲"}, "没劲的时候，常常是心里在等一件还没出现的事。", "上一次觉得有意思，是在做什么？"},
        {{"孤独", "寂寞", "一个人"}, "一个人待着的滋味我听见了。", "此刻你更想有人陪着说话，还是只想有人在旁边？"},
        {{"开心", "高兴", "太好了", "真棒", "哈哈", "成功了", "通过了"},
         "真好，我替你高兴。",
         "这份高兴里，你最想记住的是哪一刻？"},
    };
    return table;
}

} // namespace

TwinResponder::TwinResponder(const TwinContext &context)
    : m_context(context)
    , m_text(trimmed(context.userText())) {
    for (std::size_t i = 0; i + 1 < context.messages.size(); ++i)
        if (context.messages[i].role == "user")
            m_earlier.push_back(trimmed(context.messages[i].content));
}

TwinResponder::Reply TwinResponder::reply(const TwinContext &context) {
    TwinResponder responder(context);
    static constexpr Intent intents[] = {&TwinResponder::crisis,
                                         &TwinResponder::askedWhatIsRemembered,
                                         &TwinResponder::askedOneThing,
                                         &TwinResponder::askedWhoAreYou,
                                         &TwinResponder::askedEarlierWords,
                                         &TwinResponder::learned,
                                         &TwinResponder::greeted,
                                         &TwinResponder::tookLeave,
                                         &TwinResponder::askedTime,
                                         &TwinResponder::askedToChoose,
                                         &TwinResponder::spokeOfFeeling,
                                         &TwinResponder::askedForKnowledge};
    std::optional<std::string> text;
    for (const auto intent : intents) {
        text = (responder.*intent)();
        if (text)
            break;
    }
    if (!text)
        text = responder.takenUp();
    const bool introduced = std::any_of(context.messages.begin(), context.messages.end(), [](const ChatTurn &turn) {
        return turn.role == "assistant" && contains(turn.content, signature);
    });
    // Not beside a word of comfort; the next reply will say it.
    if (!introduced && !context.crisisLayer && !contains(*text, signature))
        *text += "\n\n（说明一下：我现在是离线分身，没有接模型，只能照着这段对话和我记得的事来回应。）";
    return {*text, responder.m_used};
}

std::optional<std::string> TwinResponder::crisis() {
    if (!m_context.crisisLayer)
        return std::nullopt;
    if (*m_context.crisisLayer == "acute")
        return "我听见了，也很在意你。我只是一个程序，这一刻你更需要一个真人：请现在就联系身边信任的人，或者拨打卡片上"
               "的热线；"
               "如果身体已经有危险，先打急救电话。在等的时候，把能伤到自己的东西放远一点，去有人的地方。";
    return "谢谢你愿意说出来。撑到这里一定很不容易。我不能替你扛，但你不必一个人扛：找一个信任的人，或者卡片上的热线，"
           "跟他们说你刚才跟我说的这句话就够了。你现在安全吗？";
}

std::optional<std::string> TwinResponder::askedWhatIsRemembered() {
    const bool asked = says({"记得我什么", "记得什么", "记住了什么", "记得我吗", "还记得我", "了解我什么", "知道我什么",
                             "关于我你", "我的记忆", "你都记得", "对我的了解", "记得我的"});
    if (!asked)
        return std::nullopt;
    if (m_context.memories.empty())
        return "说实话，我还没有记住你什么。你可以告诉我你叫什么、喜欢什么、在哪里生活，或者直接说“记住：……”。";
    std::string list;
    const std::size_t most = m_context.brief ? 4 : 8;
    const std::size_t first = m_context.memories.size() > most ? m_context.memories.size() - most : 0;
    for (auto i = first; i < m_context.memories.size(); ++i) {
        use(m_context.memories[i]);
        list += "\n· " + m_context.memories[i].content;
    }
    return "我记得的都是你亲口说过的：" + list + (m_context.brief ? "" : "\n哪一条不对，直接纠正我。");
}

std::optional<std::string> TwinResponder::askedOneThing() {
    struct Question {
        std::vector<std::string_view> words;
        const char *slot;
        const char *lead;
        const char *missing;
    };
    static const std::vector<Question> questions{
        {{"我叫什么", "我的名字是什么", "我是谁", "知道我名字", "记得我名字"},
         "name",
         "你",
         "你还没告诉过我你叫什么。想让我怎么称呼你？"},
        {{"我在哪工作", "我在哪里工作", "我在哪儿工作", "我在哪上班"}, "work", "你", "你还没说过在哪里工作。"},
        {{"我住哪", "我住在哪", "我家在哪"}, "home", "你", "你还没说过住在哪里。"},
        {{"我的生日", "我生日是什么", "我什么时候生日", "我生日哪天"}, "birthday", "你的", "你还没告诉过我生日。"},
        {{"我是做什么的", "我的职业是什么", "我的工作是什么"}, "role", "你的", "你还没说过自己是做什么的。"},
    };
    for (const auto &question : questions) {
        if (!says(question.words) || !m_context.fresh.empty())
            continue;
        const auto *memory = inSlot(question.slot);
        if (!memory)
            return question.missing;
        use(*memory);
        return question.lead + memory->content + "，你跟我说过的。";
    }
    if (!says({"我喜欢什么", "我喜欢吃什么", "我的爱好", "我不喜欢什么", "我讨厌什么"}))
        return std::nullopt;
    std::string list;
    for (const auto &memory : m_context.memories) {
        if (memory.truth != "pref")
            continue;
        use(memory);
        list += (list.empty() ? "" : "，") + memory.content;
    }
    return list.empty() ? std::string("你还没跟我聊过自己喜欢什么。最近有什么让你愿意多花时间的事吗？")
                        : "你说过你" + list + "。现在还是这样吗？";
}

std::optional<std::string> TwinResponder::askedWhoAreYou() {
    if (!says({"你是谁", "你叫什么", "你是什么", "你是真人", "你是AI", "你是ai", "你是机器", "你是人吗", "介绍一下你",
               "你能做什么", "你会什么"}))
        return std::nullopt;
    return "我是你的分身，现在这一位是离线分身：没有接模型，不会上网查东西，只凭这段对话和你让我记住的事来回应。"
           "你可以跟我聊近况，让我记住一件事，或者问我记得你什么。";
}

std::optional<std::string> TwinResponder::askedEarlierWords() {
    const bool last = says({"我刚才说", "我刚刚说", "我上一句", "刚才我说", "我前面说"});
    const bool all = says({"聊了什么", "聊过什么", "聊到哪", "总结一下", "回顾一下"});
    if (!last && !all)
        return std::nullopt;
    if (m_earlier.empty())
        return "这段对话才刚开始，在这句之前你还没有说别的。";
    if (last)
        return "你刚才说的是" + inQuotes(shortened(m_earlier.back(), 60)) + "。";
    std::string list;
    const std::size_t first = m_earlier.size() > 5 ? m_earlier.size() - 5 : 0;
    for (auto i = first; i < m_earlier.size(); ++i)
        list += "\n· " + shortened(m_earlier[i], 30);
    return "这段对话里你说过：" + list + "\n想接着哪一条聊？";
}

std::optional<std::string> TwinResponder::learned() {
    if (m_context.fresh.empty())
        return std::nullopt;
    const auto &first = m_context.fresh.front();
    std::string said;
    for (const auto &memory : m_context.fresh)
        said += (said.empty() ? "" : "，") + memory.content;
    std::string keeping = m_context.incognito ? "这是无痕对话，聊完我不会留下。" : "我记下了：你" + said + "。";
    if (first.slot == "name") {
        const auto called = shortened(first.content.substr(std::string_view("叫").size()), 16);
        return called + "，你好。" + keeping +
               (m_context.brief ? "" : pick({"今天想从哪儿聊起？", "最近过得怎么样？"}));
    }
    if (m_context.brief)
        return keeping;
    if (first.truth == "pref" && !first.content.starts_with("不"))
        return keeping + pick({"是从什么时候开始的？", "这件事最吸引你的是哪一点？", "上一次是什么时候？"});
    if (first.slot == "work" || first.slot == "role")
        return keeping + "这份工作里，你最想跟人说说的是哪一块？";
    if (first.slot == "home")
        return keeping + "那里有没有一个你常去的角落？";
    return keeping + pick({"以后聊到相关的事，我会想起来。", "还有别的想让我记住吗？"});
}

std::optional<std::string> TwinResponder::greeted() {
    static const std::vector<std::string_view> openings{"你好",   "您好",   "嗨",   "哈喽",   "hello",
                                                        "Hello",  "hi",     "Hi",   "早上好", "早安",
                                                        "晚上好", "下午好", "在吗", "在不在"};
    const bool opens = std::any_of(openings.begin(), openings.end(),
                                   [&](std::string_view opening) { return m_text.starts_with(opening); });
    if (!opens || characterCount(m_text) > 8)
        return std::nullopt;
    const int hour = m_context.hour;
    const std::string daytime = hour < 5    ? "这么晚还没睡"
                                : hour < 11 ? "早上好"
                                : hour < 13 ? "中午好"
                                : hour < 18 ? "下午好"
                                            : "晚上好";
    const auto called = name();
    auto text = (called.empty() ? "" : called + "，") + daytime + "。";
    if (m_context.brief)
        return text + "我在。";
    if (!m_earlier.empty())
        return text + "我在。刚才说到" + inQuotes(shortened(m_earlier.back(), 20)) + "，要接着聊吗？";
    const auto liked = std::find_if(m_context.memories.rbegin(), m_context.memories.rend(),
                                    [](const TwinMemory &memory) { return memory.content.starts_with("喜欢"); });
    if (liked != m_context.memories.rend()) {
        use(*liked);
        return text + "我记得你" + liked->content + "，最近还有时间吗？";
    }
    return text + pick({"我在，今天想聊点什么？", "今天过得怎么样？", "有什么想说的，慢慢讲。"});
}

std::optional<std::string> TwinResponder::tookLeave() {
    if (characterCount(m_text) > 14)
        return std::nullopt;
    if (says({"谢谢", "多谢", "感谢", "thanks", "Thanks"}))
        return pick({"不客气，跟我不用见外。", "别客气。能帮上一点就好。"});
    if (says({"晚安", "睡了", "去睡"}))
        return "晚安。今天就到这里，剩下的事明天再说。";
    if (says({"再见", "拜拜", "先走了", "下次聊", "bye"}))
        return "好，回头见。你说过的话我替你放在这里。";
    return std::nullopt;
}

std::optional<std::string> TwinResponder::askedTime() {
    if (!says({"几点", "今天几号", "星期几", "周几", "今天是什么日子", "今天是几月"}))
        return std::nullopt;
    return "照这台电脑的钟，现在是" + m_context.today + "。";
}

std::optional<std::string> TwinResponder::spokeOfFeeling() {
    for (const auto &feeling : feelings()) {
        if (!says(feeling.words))
            continue;
        std::string text = feeling.echo;
        if (m_context.brief)
            return text;
        if (const auto *memory = related()) {
            use(*memory);
            text += "我记得你" + memory->content + "，跟这件事有关系吗？";
        } else {
            text += feeling.question;
        }
        return text;
    }
    return std::nullopt;
}

std::optional<std::string> TwinResponder::askedToChoose() {
    const auto at = m_text.find("还是");
    if (at != std::string::npos && at > 0 &&
        (contains(m_text, "吗") || contains(m_context.userText(), "？") || contains(m_context.userText(), "?") ||
         says({"选", "好呢", "要不要"}))) {
        const auto before = clauses(m_text.substr(0, at));
        const auto after = clauses(m_text.substr(at + std::string_view("还是").size()));
        if (!before.empty() && !after.empty())
            return "先不急着选。假设已经定了" + inQuotes(shortened(before.back(), 14)) +
                   "，你是松一口气，还是有点不甘？再换成" + inQuotes(shortened(after.front(), 14)) +
                   "想一遍。哪一次先松了气，多半就是它。";
    }
    if (!says({"怎么办", "该不该", "要不要", "给点建议", "有什么建议", "怎么选"}))
        return std::nullopt;
    std::string text = "关于" + inQuotes(shortened(m_text, 24)) +
                       "，我替不了你决定，但可以陪你理一理：你最想保住的是什么，"
                       "最怕失去的又是什么？";
    if (const auto *memory = related(); memory && !m_context.brief) {
        use(*memory);
        text += "另外，你跟我说过你" + memory->content + "，它在这件事里重要吗？";
    }
    return text;
}

std::optional<std::string> TwinResponder::askedForKnowledge() {
    const bool task = says({"帮我写", "写一", "翻译", "代码", "算一下", "查一下", "搜一下", "推荐"});
    const bool question = says({"什么是", "是什么", "为什么", "怎么做", "如何", "多少钱", "天气", "新闻", "解释"});
    if (!task && !question)
        return std::nullopt;
    return "这个我现在答不好：" + inQuotes(shortened(m_text, 24)) + (task ? "要靠模型来做" : "要查资料或者靠模型来讲") +
           "，而我是离线分身，编一个答案给你反而误事。" +
           (m_context.brief ? "" : "不过你可以先说说为什么想到这个，我帮你把问题问得更清楚。");
}

std::string TwinResponder::takenUp() {
    const auto parts = clauses(m_text);
    if (parts.empty())
        return "我在听。想说的时候再说，不着急。";
    const auto &longest = *std::max_element(
        parts.begin(), parts.end(), [](const auto &a, const auto &b) { return characterCount(a) < characterCount(b); });
    const auto topic = inQuotes(shortened(longest, 22));
    if (const auto *memory = related()) {
        use(*memory);
        return "你说" + topic + "，我就想到你" + memory->content + "。" +
               (m_context.brief ? "" : pick({"这两件事在你心里连着吗？", "这次跟以前有什么不一样？"}));
    }
    if (const auto before = earlierMention(); !before.empty())
        return "这跟你前面说的" + inQuotes(shortened(before, 20)) + "像是同一件事。" +
               (m_context.brief ? "" : "现在说到" + topic + "，是有了新的想法吗？");
    if (m_context.brief)
        return pick({topic + "，我听到了。", "嗯，" + topic + "。接着说。"});
    if (characterCount(m_text) <= 4)
        return pick({"嗯，" + topic + "。多说两句？", topic + "，是指哪方面？"});
    return pick({"你说" + topic + "。这里面最要紧的是哪一点？", topic + "，听起来你心里已经转过几圈了。后来呢？",
                 "我想多了解一点：" + topic + "，是从什么时候开始的？", "你提到" + topic + "，当时你是什么感觉？"});
}

const TwinMemory *TwinResponder::inSlot(const std::string &slot) const {
    const auto found = std::find_if(m_context.memories.begin(), m_context.memories.end(),
                                    [&](const TwinMemory &memory) { return memory.slot == slot; });
    return found == m_context.memories.end() ? nullptr : &*found;
}

const TwinMemory *TwinResponder::related() {
    const auto marks = topicMarks(m_text);
    for (auto memory = m_context.memories.rbegin(); memory != m_context.memories.rend(); ++memory) {
        const auto known = topicMarks(memory->content);
        const bool shared =
            std::any_of(known.begin(), known.end(), [&](const std::string &mark) { return marks.contains(mark); });
        if (shared && memory->slot != "name")
            return &*memory;
    }
    return nullptr;
}

std::string TwinResponder::earlierMention() const {
    const auto marks = topicMarks(m_text);
    for (auto earlier = m_earlier.rbegin(); earlier != m_earlier.rend(); ++earlier) {
        const auto known = topicMarks(*earlier);
        if (*earlier != m_text &&
            std::any_of(known.begin(), known.end(), [&](const std::string &mark) { return marks.contains(mark); }))
            return *earlier;
    }
    return {};
}

std::string TwinResponder::name() {
    const auto *memory = inSlot("name");
    if (!memory)
        return {};
    use(*memory);
    return memory->content.substr(std::string_view("叫").size());
}

void TwinResponder::use(const TwinMemory &memory) {
    if (std::find(m_used.begin(), m_used.end(), memory) == m_used.end())
        m_used.push_back(memory);
}

bool TwinResponder::says(const std::vector<std::string_view> &words) const {
    return containsAnyOf(m_text, words);
}

std::string TwinResponder::pick(const std::vector<std::string> &choices) const {
    // The same words at another place of the conversation get another answer.
    std::size_t seed = m_earlier.size() + m_context.variation;
    for (const unsigned char c : m_text)
        seed = seed * 31 + c;
    return choices[(seed + m_context.variation) % choices.size()];
}

} // namespace lmp::sandbox
