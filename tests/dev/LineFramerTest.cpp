#include "dev/LineFramer.h"
#include "dev/StderrTail.h"

#include <gtest/gtest.h>

namespace lmp {

namespace {

/// Feeds `bytes` in pieces of `size` and ends the stream.
QByteArray frame(const QByteArray &bytes, qsizetype size, qsizetype limit = LineFramer::maxLine) {
    LineFramer framer(limit);
    QByteArray lines;
    for (qsizetype at = 0; at < bytes.size(); at += size)
        lines += framer.feed(bytes.mid(at, size));
    return lines + framer.finish();
}

TEST(LineFramer, IsTheSameHoweverTheBytesAreCut) {
    struct {
        QByteArray bytes;
        QByteArray lines;
    } const cases[] = {
        {"", ""},
        {"one\ntwo\n", "one\ntwo\n"},
        {"one\n\n\ntwo", "one\n\n\ntwo\n"},
        {"字\n\xe5\xad\nafter\n", "字\nafter\n"},
        {"\xff\n", ""},
        {"kept\nlast \xc3", "kept\n"},
        {QByteArray("nul\0in\r\n", 8), QByteArray("nul\0in\r\n", 8)},
        {QByteArray(300'000, 'x') + "\nshort\n" + QByteArray(140'000, 'y'),
         QByteArray(300'000, 'x') + "\nshort\n" + QByteArray(140'000, 'y') + '\n'},
    };
    for (const auto &[bytes, lines] : cases) {
        const qsizetype smallest = bytes.size() > 1000 ? 4099 : 1;
        for (const qsizetype size : {smallest, smallest + 1, qsizetype(7001), qsizetype(1 << 20)})
            EXPECT_EQ(frame(bytes, size), lines) << bytes.left(40).constData() << " in pieces of " << size;
    }
}

TEST(LineFramer, YieldsNothingBeforeTheLineIsWhole) {
    LineFramer framer;
    EXPECT_EQ(framer.feed("{\"half\":"), "");
    EXPECT_EQ(framer.feed("1}\nnext"), "{\"half\":1}\n");
    EXPECT_EQ(framer.finish(), "next\n");
    EXPECT_EQ(framer.finish(), "");
}

TEST(LineFramer, BreaksAtALineThatIsTooLong) {
    const QByteArray longest(10, 'x');
    for (const qsizetype size : {1, 3, 100}) {
        EXPECT_EQ(frame(longest + '\n' + longest, size, 10), longest + '\n' + longest + '\n');
        EXPECT_EQ(frame("a\n" + longest + "x\nb\n", size, 10), "a\n");
        EXPECT_EQ(frame("a\n" + longest + longest, size, 10), "a\n");
    }
    LineFramer framer(10);
    EXPECT_EQ(framer.feed("0123456789a"), "");
    EXPECT_TRUE(framer.isBroken());
    EXPECT_EQ(framer.feed("\nb\n"), "");
}

TEST(StderrTail, KeepsTheLastCharacters) {
    StderrTail tail;
    QString all;
    for (int number = 0; all.size() < 10'000; ++number)
        all += QString::number(number) + QStringLiteral("行");
    const QByteArray bytes = all.toUtf8();
    for (qsizetype at = 0; at < bytes.size(); at += 7)
        tail.feed(bytes.mid(at, 7));
    EXPECT_EQ(tail.text(), all.last(4000));
    for (int more = 0; more < 40'000; ++more)
        tail.feed("👨‍👩‍👧‍👦");
    EXPECT_EQ(tail.text(), QStringLiteral("👨‍👩‍👧‍👦").repeated(4000));
}

TEST(StderrTail, DropsWhatIsForATerminal) {
    struct {
        QByteArray bytes;
        QString text;
    } const cases[] = {
        {"\x1b[1;31merror\x1b[0m: 失败\n", QStringLiteral("error: 失败\n")},
        {"\x1b]8;;https://x.invalid\x1b\\link\x1b]8;;\x07!", QStringLiteral("link!")},
        {"\x1b(Bplain\x1b[?25l\x1b[2K\b\a.", QStringLiteral("plain.")},
        {"\x1b]title without end\nnext", QStringLiteral("next")},
        {"\x1b[31\nnext", QStringLiteral("\nnext")},
        {"tail\x1b[", QStringLiteral("tail")},
    };
    for (const auto &[bytes, text] : cases) {
        StderrTail whole;
        whole.feed(bytes);
        EXPECT_EQ(whole.text(), text);
        StderrTail pieces;
        for (const char byte : bytes)
            pieces.feed({&byte, 1});
        EXPECT_EQ(pieces.text(), text);
    }
}

} // namespace

} // namespace lmp
