#include "screens/markdown/CodeHighlighter.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// The spans as "K:return S:"text"".
QString seen(const QString &code, const QString &language) {
    QStringList all;
    for (const auto &[start, length, kind] : CodeHighlighter::spans(code, language))
        all += QString(u"KSCNAar"_s[qsizetype(kind)]) + u':' + code.sliced(start, length);
    return all.join(u' ');
}

} // namespace

TEST(CodeHighlighterTest, ColoursWhatItKnows) {
    struct Case {
        QString language, code, spans;
    };
    const QList<Case> cases{
        {u"cpp"_s, u"#include <a>\nint x = 0x1f; // no \"y\"\nchar c = '\\n', d = '\"'; /* b\n */ s(\"q\\\"\");"_s,
         u"K:#include K:int N:0x1f C:// no \"y\" K:char S:'\\n' S:'\"' C:/* b\n */ S:\"q\\\"\""_s},
        {u"Python"_s, u"def f(a):  # c\n    return \"\"\"d\n'\"\"\" + 'e\n"_s,
         u"K:def C:# c K:return S:\"\"\"d\n'\"\"\" S:'e"_s},
        {u"rust"_s, u"fn a<'b>(c: &'b str) { 'x'; \"two\nlines\" }"_s, u"K:fn K:str S:'x' S:\"two\nlines\""_s},
        {u"ts"_s, u"const a = `b\n${c}` // https://d\nlet e = 'http://f'"_s,
         u"K:const S:`b\n${c}` C:// https://d K:let S:'http://f'"_s},
        {u"json"_s, u"{\"a\": [1.5e3, true, \"b\"]}"_s, u"A:\"a\" N:1.5e3 K:true S:\"b\""_s},
        {u"yaml"_s, u"my-key: 1 # c\n  - name: yes"_s, u"A:my-key N:1 C:# c K:yes"_s},
        {u"bash"_s, u"for f in $HOME/${x}; do echo \"a\" # b\ndone; a=$#"_s,
         u"K:for K:in A:$HOME A:${x K:do K:echo S:\"a\" C:# b K:done"_s},
        {u"sql"_s, u"Select a FROM b -- c\nwhere d = 'e'"_s, u"K:Select K:FROM C:-- c K:where S:'e'"_s},
        {u"html"_s, u"<!-- a --><p class=\"b\">if 1</p>"_s, u"C:<!-- a --> K:<p A:class S:\"b\" K:</p"_s},
        {u"diff"_s, u"--- a\n+++ b\n@@ 1 @@\n-c\n+d\n e"_s, u"C:--- a C:+++ b K:@@ 1 @@ r:-c a:+d"_s},
        {u"go"_s, u"func a() { return `b\nc` }"_s, u"K:func K:return S:`b\nc`"_s},
        {u"java"_s, u"public class A { int b = 1; }"_s, u"K:public K:class K:int N:1"_s},
        {u"swift"_s, u"let a = \"b\" // c"_s, u"K:let S:\"b\" C:// c"_s},
        {u""_s, u"if x"_s, u""_s},
        {u"klingon"_s, u"if x"_s, u""_s},
    };
    for (const auto &[language, code, spans] : cases)
        EXPECT_EQ(seen(code, language), spans) << language.toStdString();
}

} // namespace lmp
