#include "core/PlainLabel.h"
#include "core/APIError.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

TEST(PlainLabelTest, TakesOutWhatActs) {
    struct Case {
        QString text, line, lines;
    };
    const std::vector<Case> cases{
        {u"周末去哪"_s, u"周末去哪"_s, u"周末去哪"_s},
        {u"  a\r\n b\t\u2028c "_s, u"a b c"_s, u"  a\n b\t\nc "_s},
        {u"a\u001b[31mb\u0007\u009bc\u0000d"_s, u"a[31mbcd"_s, u"a[31mbcd"_s},
        // What would turn the rest of the line around goes; the text that runs the other way stays, and its marks.
        {u"发票\u202Efdp.\u202C\u2066x\u2069"_s, u"发票fdp.x"_s, u"发票fdp.x"_s},
        {u"مرحبا\u200f (1)"_s, u"مرحبا\u200f (1)"_s, u"مرحبا\u200f (1)"_s},
        {u"\u0001\u202e \n"_s, QString(), u" \n"_s},
    };
    for (const Case &one : cases) {
        EXPECT_EQ(PlainLabel::line(one.text), one.line);
        EXPECT_EQ(PlainLabel::lines(one.text), one.lines);
    }
}

TEST(PlainLabelTest, KeepsWholeCharactersAndNoMoreThanAsked) {
    EXPECT_EQ(PlainLabel::line(u"abcd", 4), u"abcd"_s);
    EXPECT_EQ(PlainLabel::line(u"abcde", 4), u"abc…"_s);
    // A family of seven units is one character.
    EXPECT_EQ(PlainLabel::line(u"ab👨‍👩‍👧cd", 6), u"ab…"_s);
    EXPECT_EQ(PlainLabel::lines(u"1\n2\n3\n4", 9, 2), u"1\n2 3 4"_s);
    for (const QString &endless : {QString(1 << 20, u'长'), QString(1 << 20, QChar(0x0301)), QString(1 << 20, u'\n'),
                                   QString(1 << 20, QChar(0x202e)), u"字"_s + QString(1 << 20, u' ') + u"字"_s}) {
        for (const QString &text :
             {PlainLabel::line(endless), PlainLabel::lines(endless),
              APIError::fromAnswer(500,
                                   "{\"reason\":\"" + endless.toHtmlEscaped().replace(u'\n', u"\\n"_s).toUtf8() + "\"}")
                  .reason}) {
            EXPECT_LE(text.size(), PlainLabel::longestSentence);
            EXPECT_LE(text.count(u'\n'), PlainLabel::mostSentenceLines);
            EXPECT_TRUE(text.endsWith(u'…'));
        }
    }
}

} // namespace lmp
