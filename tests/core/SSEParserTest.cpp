#include "core/SSEParser.h"

#include "core/Json.h"

#include <QFile>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

struct SSECaseEvent {
    QString event;
    QString data;
};
BOOST_DESCRIBE_STRUCT(SSECaseEvent, (), (event, data))

struct SSECase {
    QString id;
    QString input_b64;
    std::vector<SSECaseEvent> events;
};
BOOST_DESCRIBE_STRUCT(SSECase, (), (id, input_b64, events))

struct SSECases {
    std::vector<SSECase> cases;
};
BOOST_DESCRIBE_STRUCT(SSECases, (), (cases))

void PrintTo(const SSEEvent &event, std::ostream *out) {
    *out << event.event.toStdString() << ": " << event.data.toStdString();
}

namespace {

struct Parsed {
    std::vector<SSEEvent> events;
    bool whole = true;
    bool operator==(const Parsed &) const = default;
};

void PrintTo(const Parsed &parsed, std::ostream *out) {
    *out << ::testing::PrintToString(parsed.events) << (parsed.whole ? "" : " and then a broken limit");
}

Parsed parse(const QList<QByteArray> &pieces, SSEParser parser = SSEParser()) {
    Parsed parsed;
    for (const QByteArray &piece : pieces)
        parsed.whole = parser.feed(piece, parsed.events);
    parsed.whole = parser.finish(parsed.events);
    return parsed;
}

/// The input in one piece, in two at every place, and byte by byte.
void everySplit(const QByteArray &input, const Parsed &expected, const std::string &name,
                const SSEParser &parser = SSEParser()) {
    for (qsizetype at = 0; at <= input.size(); ++at)
        EXPECT_EQ(parse({input.first(at), input.sliced(at)}, parser), expected) << name << " split at " << at;
    QList<QByteArray> bytes;
    for (const char c : input)
        bytes.append(QByteArray(1, c));
    EXPECT_EQ(parse(bytes, parser), expected) << name << " byte by byte";
}

} // namespace

TEST(SSEParserTest, StandardCasesAtEverySplit) {
    QFile file(QStringLiteral(LMP_TEST_DATA "/sse.json"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto read = Json::decode<SSECases>(file.readAll());
    ASSERT_TRUE(read);
    ASSERT_GE(read->cases.size(), 25u);
    for (const SSECase &one : read->cases) {
        Parsed expected;
        for (const auto &[event, data] : one.events)
            expected.events.push_back({event, data.toUtf8()});
        everySplit(QByteArray::fromBase64(one.input_b64.toLatin1()), expected, one.id.toStdString());
    }
}

TEST(SSEParserTest, OwnCasesAtEverySplit) {
    struct Case {
        QByteArray input;
        std::vector<SSEEvent> events;
    };
    for (const auto &[input, events] : std::initializer_list<Case>{
             {"data: a\ndata: b\n\n", {{u"message"_s, "a\nb"}}},
             {"event: done\r\ndata: x\r\n\r\n", {{u"done"_s, "x"}}},
             {"data:  two blanks\n\n", {{u"message"_s, " two blanks"}}},
             {"data: x\r\r\n\n", {{u"message"_s, "x\r"}}},
             {"data: a\rdata: b\n\n", {{u"message"_s, "a\rdata: b"}}},
             {"event: lost\n\ndata: x\n\n", {{u"message"_s, "x"}}},
             {"event: a\nevent: b\ndata: x\n\n", {{u"b"_s, "x"}}},
             {"event: 你\ndata: 好\n\n", {{u"你"_s, "好"}}},
             {"data: a:b: c\n: note\n\n", {{u"message"_s, "a:b: c"}}},
             {"\xef\xbb\xbf", {}},
             {"\xef\xbb\xbf\ndata: x", {{u"message"_s, "x"}}},
             {"data: cut \xe4\xbd", {{u"message"_s, "cut \xe4\xbd"}}},
             {"data", {{u"message"_s, ""}}},
             {"", {}},
         })
        everySplit(input, {events, true}, input.toStdString());
}

TEST(SSEParserTest, LimitsHoldAtEverySplit) {
    const SSEParser small({.line = 12, .data = 14});
    struct Case {
        QByteArray input;
        Parsed parsed;
    };
    for (const auto &[input, parsed] : std::initializer_list<Case>{
             {"data: 123456\n\n", {{{u"message"_s, "123456"}}, true}},
             {"data: 123456\r\n\n", {{}, false}},
             {"data: a\n\ndata: 1234567\ndata: b\n\n", {{{u"message"_s, "a"}}, false}},
             {"data: 123456\ndata: 123456\n\n", {{{u"message"_s, "123456\n123456"}}, true}},
             {"data: 123456\ndata: 123456\ndata", {{{u"message"_s, "123456\n123456\n"}}, true}},
             {"data: 123456\ndata: 123456\ndata\ndata", {{}, false}},
             {":23456789012", {{}, true}},
             {":234567890123", {{}, false}},
         })
        everySplit(input, parsed, input.toStdString(), small);
}

} // namespace lmp
