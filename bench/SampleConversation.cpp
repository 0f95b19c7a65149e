#include "SampleConversation.h"

#include <QRandomGenerator>

namespace lmp::bench {

using namespace Qt::StringLiterals;

namespace {

/// Draws what the messages are made of.
class Draw {
public:
    int below(int bound) { return int(m_random.bounded(bound)); }
    bool oneIn(int count) { return below(count) == 0; }

    QString pick(const QStringList &from) { return from[below(int(from.size()))]; }

    QString chinese(int length) {
        static const QString characters =
            u"我你他们今天明天昨天一起去吃饭看电影的是了在有不这个那里好想说话声音记忆分身朋友城市雨夜咖啡旅行照片音乐"_s;
        QString text;
        for (int i = 0; i < length; ++i)
            text += characters[below(int(characters.size()))];
        return text;
    }

    QString english(int words) {
        static const QStringList known =
            u"the twin remembers a small thing you said about rain and coffee last week maybe"_s.split(u' ');
        QStringList text;
        for (int i = 0; i < words; ++i)
            text += pick(known);
        return text.join(u' ');
    }

    QString content() {
        const int kind = below(10);
        if (kind < 6)
            return chinese(5 + below(41)) + pick({u"。"_s, u"！"_s, u"？"_s, u"……"_s});
        if (kind < 9)
            return english(3 + below(16));
        return u"line \"one\"\n"_s + chinese(12) + u"\t😀"_s;
    }

    QString messageId() { return u"msg_"_s + QString::number(m_random.generate64(), 16); }

private:
    QRandomGenerator m_random{7};
};

SampleMessage message(Draw &draw, int number) {
    SampleMessage made{.id = draw.messageId(),
                       .role = draw.pick({u"user"_s, u"twin"_s, u"system"_s}),
                       .content = draw.content(),
                       .createdAt = 1'700'000'000'000 + number * 977ll,
                       .edited = draw.oneIn(10),
                       .replyTo = {},
                       .score = {},
                       .tags = {},
                       .attachment = {}};
    if (draw.oneIn(3))
        made.replyTo = draw.messageId();
    if (draw.oneIn(3))
        made.score = draw.below(1'000'000) / 1e6;
    if (draw.oneIn(4))
        made.tags = QList<QString>(1 + draw.below(3), draw.pick({u"重要"_s, u"trip"_s, u"工作"_s}));
    if (draw.oneIn(8))
        made.attachment = {u"image"_s, u"https://cdn.example.invalid/"_s + draw.messageId() + u".webp"_s,
                           draw.oneIn(3) ? std::nullopt : std::optional<qint64>(draw.below(9'000'000))};
    return made;
}

} // namespace

SampleConversation SampleConversation::ofMessages(int count) {
    Draw draw;
    SampleConversation made{u"conv_1"_s, u"和我的分身聊天"_s, {}};
    for (int number = 0; number < count; ++number)
        made.messages.push_back(message(draw, number));
    return made;
}

} // namespace lmp::bench
