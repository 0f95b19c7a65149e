#include "conversation/TTSTextChunker.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

TEST(TTSTextChunkerTest, CutsAtSentencesLinesAndLength) {
    const QString family = u"👨‍👩‍👧"_s; // 8 units
    struct Case {
        QString text;
        QList<QString> chunks;
    };
    for (const auto &[text, chunks] : std::initializer_list<Case>{
             {{}, {}},
             {u"你好。走吧！"_s, {u"你好。"_s, u"走吧！"_s}},
             {u"a\nb"_s, {u"a\n"_s, u"b"_s}},
             {u"a\r\nb"_s, {u"a\r\n"_s, u"b"_s}},
             {u"一\u2028二\u0085三"_s, {u"一\u2028"_s, u"二\u0085"_s, u"三"_s}},
             {u"真的?!嗯"_s, {u"真的?"_s, u"!"_s, u"嗯"_s}},
             {u" 、 "_s, {u" 、 "_s}},
             {QString(1200, u'字'), {QString(500, u'字'), QString(500, u'字'), QString(200, u'字')}},
             {QString(499, u'a') + u"😀"_s, {QString(499, u'a'), u"😀"_s}},
             {QString(498, u'a') + u"😀。"_s, {QString(498, u'a') + u"😀"_s, u"。"_s}},
             {family.repeated(63), {family.repeated(62), family}},
         })
        EXPECT_EQ(TTSTextChunker::chunks(text), chunks) << text.toStdString();
}

TEST(TTSTextChunkerTest, OneCharacterTooLong) {
    const QString longest = u'e' + QString(499, QChar(0x301));
    EXPECT_EQ(TTSTextChunker::chunks(longest), QList<QString>{longest});
    const auto failed = TTSTextChunker::chunks(u"好。"_s + longest + QChar(0x301));
    ASSERT_FALSE(failed);
    EXPECT_EQ(TTSTextChunker::describe(failed.error()), u"文字含有过长的组合字符，暂时无法朗读，请继续查看文字。"_s);
}

} // namespace lmp
