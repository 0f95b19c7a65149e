#include "screens/markdown/MarkdownDocument.h"

#include "screens/markdown/MarkdownInline.h"

#include <QTextCursor>
#include <QTextDocument>
#include <gtest/gtest.h>

#include <random>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

using Kind = MarkdownBlock::Kind;
using Task = MarkdownBlock::Task;

MarkdownDocument whole(const QString &text) {
    MarkdownDocument document;
    document.setText(text);
    return document;
}

/// One block as a word or two: nesting, bullet, kind, content.
QString seen(const MarkdownBlock &block) {
    QString text = QString(block.quoteDepth, u'>') + QString(block.listDepth, u'-');
    if (!block.marker.isEmpty())
        text += block.marker;
    if (block.task != Task::None)
        text += block.task == Task::Done ? u"[x]"_s : u"[ ]"_s;
    switch (block.kind) {
    case Kind::Paragraph:
        return text + u"p:"_s + block.text;
    case Kind::Heading:
        return text + u"h%1:"_s.arg(block.level) + block.text;
    case Kind::Code:
        return text + u"code(%1):"_s.arg(block.language) + QString(block.code).replace(u'\n', u'|');
    case Kind::Table:
        return text + u"table:%1"_s.arg(block.lines);
    case Kind::Image:
        return text + u"image:"_s + block.imageUrl + u' ' + block.alt;
    case Kind::Rule:
        return text + u"rule"_s;
    }
    return {};
}

QStringList seen(const QString &text) {
    QStringList all;
    for (const MarkdownBlock &block : whole(text).blocks())
        all += seen(block);
    return all;
}

/// Text of the marks that blocks are made of, in any order: broken more often than not.
QString jumble(std::mt19937 &random) {
    static const QStringList parts{
        u"> "_s,  u"- "_s,   u"1. "_s, u"12) "_s,   u"    "_s,        u"  "_s,      u"\t"_s,          u"```"_s,
        u"~~~"_s, u"---"_s,  u"==="_s, u"| a | "_s, u"|---|---|"_s,   u"\n"_s,      u"\n"_s,          u"\n\n"_s,
        u"**"_s,  u"*"_s,    u"`"_s,   u"[x](h"_s,  u"ttps://a.b)"_s, u"![i](u)"_s, u"https://c.d"_s, u"你好，"_s,
        u"😀"_s,  u"\r\n"_s, u"# "_s,  u"word "_s,  u"\\"_s,          u"&amp;"_s,   u"<br>"_s,        u"[ ] "_s};
    QString text;
    for (int i = 0, count = int(random() % 40); i < count; ++i)
        text += parts[qsizetype(random() % uint(parts.size()))];
    return text;
}

} // namespace

TEST(MarkdownDocumentTest, FindsBlocks) {
    struct Case {
        QString text;
        QStringList blocks;
    };
    const QList<Case> cases{
        {u""_s, {}},
        {u"one\ntwo\n\nthree"_s, {u"p:one<br>two"_s, u"p:three"_s}},
        {u"# A\n## B ##\n#C\nD\n===\nE\n---"_s, {u"h1:A"_s, u"h2:B"_s, u"h1:#C<br>D"_s, u"h2:E"_s}},
        {u"***\n- - -\n_ _\n"_s, {u"rule"_s, u"rule"_s, u"p:_ _"_s}},
        {u"```cpp x\n a\n\n```\n~~~\nb"_s, {u"code(cpp): a|"_s, u"code():b"_s}},
        {u"````\n```\n````\n   ```\n   in\n  less\n```"_s, {u"code():```"_s, u"code():in|less"_s}},
        {u"    a\n\n\n    b\n\nc"_s, {u"code():a|||b"_s, u"p:c"_s}},
        {u"- a\n- b\n\n  more\n\n      code\n* c"_s,
         {u"-•p:a"_s, u"-•p:b"_s, u"-p:more"_s, u"-code():code"_s, u"-•p:c"_s}},
        {u"1. a\n1. b\n   1) x\n7. c\n\ntext\n9. d\n\n9. e"_s,
         {u"-1.p:a"_s, u"-2.p:b"_s, u"--1.p:x"_s, u"-3.p:c"_s, u"p:text<br>9. d"_s, u"-9.p:e"_s}},
        {u"- [ ] open\n- [x] done\n- [y] text\n-"_s,
         {u"-•[ ]p:open"_s, u"-•[x]p:done"_s, u"-•p:[y] text"_s, u"-•p:"_s}},
        {u"> a\nlazy\n>> b\n> - c\n\n> d"_s, {u">p:a<br>lazy"_s, u">>p:b"_s, u">-•p:c"_s, u">p:d"_s}},
        {u"> ```\n> code\nout"_s, {u">code():code"_s, u"p:out"_s}},
        {u"- - a\n- 1. b"_s, {u"-•p:"_s, u"--•p:a"_s, u"-•p:"_s, u"--1.p:b"_s}},
        {u"head:\n| a | b |\n|--|:-:|\n| c |\nd | e | f\n\nend"_s, {u"p:head:"_s, u"table:2"_s, u"p:end"_s}},
        {u"| a | b |\n|---|\nno"_s, {u"p:| a | b |<br>|---|<br>no"_s}},
        {u"![cat](https://a.b/c.png)"_s, {u"image:https://a.b/c.png cat"_s}},
        {u"- see ![](x) it"_s, {u"-•p:see [图片] it"_s, u"-image:x "_s}},
        {u"<div>\n*x*\n</div>\n[a]: http://b.c"_s,
         {u"p:&lt;div&gt;<br><i>x</i><br>&lt;/div&gt;<br>[a]: <a href=\"http://b.c\">http://b.c</a>"_s}},
    };
    for (const auto &[text, blocks] : cases)
        EXPECT_EQ(seen(text), blocks) << text.toStdString();
}

TEST(MarkdownDocumentTest, WritesOnlySafeRichText) {
    struct Case {
        QString source;
        QString text;
    };
    const QList<Case> cases{
        {u"**b** *i* ~~s~~ `a<b  c`"_s, u"<b>b</b> <i>i</i> <s>s</s> <code>a&lt;b  c</code>"_s},
        {u"*中文 too*"_s, u"<span class=\"em\">中文 too</span>"_s},
        {u"a & b &lt; &#20013; &nope; &#0;"_s, u"a &amp; b &lt; 中 &amp;nope; �"_s},
        {u"<script>alert(1)</script><BR />x"_s, u"&lt;script&gt;alert(1)&lt;/script&gt;<br>x"_s},
        {u"[t](https://a.b/?x=1&y=2)"_s, u"<a href=\"https://a.b/?x=1&amp;y=2\">t</a>"_s},
        {u"[t](javascript:alert(1)) [u](file:///etc) [v](tel:1)"_s,
         u"t（javascript:alert(1)） u（file:///etc） v（tel:1）"_s},
        {u"[bank](https://bank.com@evil.org)"_s, u"bank（https://bank.com@evil.org）"_s},
        {u"[\"](https://a.b/\"onclick=x)"_s, u"&quot;（https://a.b/&quot;onclick=x）"_s},
        {u"看https://a.b/c_d_e，和（www.x.cn）。"_s,
         u"看<a href=\"https://a.b/c_d_e\">https://a.b/c_d_e</a>，和（<a href=\"https://www.x.cn\">www.x.cn</a>）。"_s},
        {u"<https://a.b> xhttps://a.b https:// `https://a.b`"_s,
         u"<a href=\"https://a.b\">https://a.b</a> xhttps://a.b https:// <code>https://a.b</code>"_s},
        {u"a\u202eb\u2029c\ufffcd\x01\u2067e"_s, u"ab c�de"_s},
        {u"- # > no block \\* here\\\nnext"_s, u"- # &gt; no block * here<br>next"_s},
        {u"[![p](https://i.j/k)](https://a.b)"_s, u"<a href=\"https://a.b\">[图片：p]</a>"_s},
    };
    for (const auto &[source, text] : cases)
        EXPECT_EQ(MarkdownInline::of(source).text, text) << source.toStdString();
}

TEST(MarkdownDocumentTest, ALinkThatNamesAnotherHostSaysWhereItLeads) {
    const struct {
        QString words, address, behind;
    } cases[] = {
        {u"https://bank.com/in"_s, u"https://evil.org/"_s, u"（通往 evil.org）"_s},
        {u"please go to www.bank.com"_s, u"https://evil.org/"_s, u"（通往 evil.org）"_s},
        {u"bank.com"_s, u"https://bank.com.evil.org/"_s, u"（通往 bank.com.evil.org）"_s},
        {u"https://b\u0430nk.com"_s, u"https://b\u0430nk.com"_s, u"（通往 xn--bnk-6cd.com）"_s},
        {u"www.bank.com"_s, u"https://bank.com/path"_s, {}},
        {u"Bank.com"_s, u"https://bank.com"_s, {}},
        {u"the bank"_s, u"https://bank.com"_s, {}},
        {u"main.cpp"_s, u"https://example.org/main.cpp"_s, {}},
    };
    for (const auto &[words, address, behind] : cases) {
        const QString text = MarkdownInline::of(u'[' + words + u"]("_s + address + u')').text;
        EXPECT_EQ(text.sliced(text.indexOf(u"</a>"_s) + 4), behind) << words.toStdString();
    }
}

TEST(MarkdownDocumentTest, KnowsWhereLinksStandAndWhichHideTheirAddress) {
    const auto made = MarkdownInline::of(u"中 [a.b](http://a.b/) **x**<br>[y](http://z)"_s);
    EXPECT_EQ(made.links, (QList<MarkdownLink>{{2, 3, u"http://a.b/"_s}, {8, 1, u"http://z"_s}}));
    EXPECT_EQ(made.length, 9);
}

/// The keyboard goes to them by their place, so that must be the layout's own.
TEST(MarkdownDocumentTest, KnowsWhereTheLinksOfATableStand) {
    MarkdownDocument document;
    document.append(u"| [h](http://h) | b |\n|---|--:|\n| 中 [one](http://n1)<br>x | [![p](http://i)](http://n2) |\n"
                    u"| |\n| a | http://n3 | [c](http://n4) |"_s);
    document.finish();
    ASSERT_EQ(document.blocks().size(), 1);
    const MarkdownBlock &block = document.blocks()[0];
    QTextDocument layout;
    layout.setHtml(block.text);
    QStringList found;
    for (const MarkdownLink &link : block.links) {
        QTextCursor cursor(&layout);
        cursor.setPosition(link.start);
        cursor.setPosition(link.start + link.length, QTextCursor::KeepAnchor);
        found << cursor.selectedText() + u' ' + cursor.charFormat().anchorHref() + u' ' + link.url;
    }
    EXPECT_EQ(found,
              (QStringList{u"h http://h http://h"_s, u"one http://n1 http://n1"_s, u"[图片：p] http://n2 http://n2"_s,
                           u"http://n3 http://n3 http://n3"_s, u"c http://n4 http://n4"_s}));
}

TEST(MarkdownDocumentTest, CodeShowsWhatWouldDisguiseIt) {
    const QString code = u"rm \u202ex\u2066"_s;
    const auto document = whole(u"```\n"_s + code + u"\n```"_s);
    EXPECT_EQ(document.blocks()[0].code, u"rm �x�"_s);
    EXPECT_EQ(document.source(0), code);
}

/// However a text arrives, and wherever it was taken for finished meanwhile, it is the text it is in the end.
TEST(MarkdownDocumentTest, SplitsDoNotMatter) {
    std::mt19937 random(20240611);
    for (int round = 0; round < 400; ++round) {
        QString text = jumble(random);
        if (round % 40 == 0)
            text += QString(int(MarkdownLimits::line + random() % 3000), u'长') + jumble(random);
        MarkdownDocument document;
        for (qsizetype at = 0; at < text.size();) {
            const qsizetype size = std::min<qsizetype>(1 + qsizetype(random() % 12), text.size() - at);
            const QList<MarkdownBlock> before = document.blocks();
            document.append(QStringView(text).sliced(at, size));
            ASSERT_EQ(document.blocks().first(document.changedFrom()), before.first(document.changedFrom()));
            at += size;
            if (random() % 8 == 0)
                document.finish();
        }
        document.finish();
        ASSERT_EQ(document.blocks(), whole(text).blocks()) << text.toStdString();
    }
}

/// While it arrives, a line is not taken for something it will hardly be.
TEST(MarkdownDocumentTest, AnUndecidedLastLineWaits) {
    MarkdownDocument document;
    document.append(u"text\n-");
    EXPECT_EQ(seen(document.blocks().last()), u"p:text"_s);
    document.append(u" item");
    EXPECT_EQ(seen(document.blocks().last()), u"-•p:item"_s);
    document.append(u"\n\n```p");
    EXPECT_EQ(seen(document.blocks().last()), u"code(p):"_s);
    document.append(u"y\nx\n``");
    EXPECT_EQ(seen(document.blocks().last()), u"code(py):x"_s);
    EXPECT_FALSE(document.blocks().last().closed);
    document.append(u"`\n");
    EXPECT_TRUE(document.blocks().last().closed);
}

/// Nothing that arrives makes a block that is expensive to lay out, and nothing is lost.
TEST(MarkdownDocumentTest, EveryBlockStaysSmall) {
    const QList<QString> texts{
        QString(1'000'000, u'w'),
        QString(200'000, u'字'),
        u"两 "_s.repeated(100'000),
        u"e\u0301"_s.repeated(100'000),
        u">"_s.repeated(10'000) + u"deep"_s,
        u"- "_s.repeated(10'000) + u"deep"_s,
        u"> - "_s.repeated(40) + u"a\n"_s + u"lazy\n"_s.repeated(20'000),
        u"["_s.repeated(50'000),
        u"**a `b ~~c ["_s.repeated(20'000),
        u"```\n"_s + u"line of code\n"_s.repeated(50'000),
        u"```\n"_s + QString(500'000, u'x'),
        u"| a | b |\n|---|---|\n"_s + u"| c | d |\n"_s.repeated(50'000),
        u"|"_s.repeated(50'000) + u"\n"_s + u"|-"_s.repeated(50'000),
        u"![i](u)"_s.repeated(50'000),
        u"&amp;<b>"_s.repeated(50'000),
    };
    for (const QString &text : texts) {
        const MarkdownDocument document = whole(text);
        qsizetype kept = 0;
        for (qsizetype i = 0; i < document.blocks().size(); ++i) {
            const MarkdownBlock &block = document.blocks()[i];
            EXPECT_LE(block.text.size(), 200'000);
            EXPECT_LE(block.code.size(), MarkdownLimits::code);
            EXPECT_LE(block.code.count(u'\n'), MarkdownLimits::codeLines);
            EXPECT_LE(block.quoteDepth + block.listDepth, MarkdownLimits::depth);
            if (block.kind != Kind::Image)
                kept += document.source(i).size();
            if (block.kind == Kind::Paragraph) {
                EXPECT_LE(document.source(i).size(), MarkdownLimits::paragraph);
            }
        }
        EXPECT_GE(kept, text.size() * 9 / 10 - 5 * MarkdownLimits::depth) << text.left(20).toStdString();
    }
}

TEST(MarkdownDocumentTest, LongCodeAndTablesShowMoreWhenAsked) {
    MarkdownDocument document;
    document.append(u"before\n\n```\n"_s + u"line\n"_s.repeated(1500) + u"```\n\n| a |\n|---|\n"_s +
                    u"| c |\n"_s.repeated(80));
    ASSERT_EQ(document.blocks().size(), 3);
    EXPECT_EQ(document.blocks()[1].hidden, 1300);
    EXPECT_EQ(document.blocks()[2].hidden, 30);
    document.expand(1);
    EXPECT_EQ(document.changedFrom(), 1);
    EXPECT_EQ(document.blocks()[1].hidden, 300);
    EXPECT_EQ(document.blocks()[1].code.count(u'\n'), 1199);
    document.expand(2);
    EXPECT_EQ(document.blocks()[2].hidden, 0);
    document.append(u"| d |\n");
    EXPECT_EQ(document.blocks()[2].text.count(u"<tr>"_s), 82);
    document.collapse(1);
    EXPECT_EQ(document.blocks()[1].hidden, 1300);
    EXPECT_EQ(document.source(1), u"line\n"_s.repeated(1500).chopped(1));

    // As many cells as can be laid out, not as many rows.
    const auto row = [](const QString &cell) {
        return cell.repeated(900) + u'\n';
    };
    document = whole(row(u"|a"_s) + row(u"|-"_s) + row(u"|c"_s).repeated(60));
    document.expand(0);
    EXPECT_EQ(document.blocks()[0].hidden, 56);
}

TEST(MarkdownDocumentTest, PlacesBlocks) {
    const auto blocks = whole(u"a\n\n> b\n>\n> > c\n>\n> - d\n>\n>   e\n\n# f\n- g\n- h"_s).blocks();
    struct Place {
        int indent, space;
        QList<int> bars, joined;
    };
    const QList<Place> places{{0, 0, {}, {}},   {16, 12, {0}, {}}, {32, 12, {16}, {0}}, {40, 8, {}, {0}},
                              {40, 8, {}, {0}}, {0, 20, {}, {}},   {24, 8, {}, {}},     {24, 4, {}, {}}};
    ASSERT_EQ(blocks.size(), places.size());
    for (qsizetype i = 0; i < places.size(); ++i) {
        EXPECT_EQ(blocks[i].indent, places[i].indent) << i;
        EXPECT_EQ(blocks[i].space, places[i].space) << i;
        EXPECT_EQ(blocks[i].bars, places[i].bars) << i;
        EXPECT_EQ(blocks[i].joinedBars, places[i].joined) << i;
    }
}

} // namespace lmp
