#include "core/Json.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

enum class Mood { calm, loud };
BOOST_DESCRIBE_ENUM(Mood, calm, loud)

struct Everything {
    bool flag = false;
    qint64 whole = 0;
    int small = 0;
    double real = 0;
    QString text;
    Mood mood = Mood::calm;
    std::vector<int> list;
    QMap<QString, double> map;
    std::optional<QString> maybe;
    boost::json::value opaque;
    bool operator==(const Everything &) const = default;
};
BOOST_DESCRIBE_STRUCT(Everything, (), (flag, whole, small, real, text, mood, list, map, maybe, opaque))

struct Number {
    qint64 n = 0;
};
BOOST_DESCRIBE_STRUCT(Number, (), (n))

TEST(JsonTest, RoundTrip) {
    Everything value{.flag = true,
                     .whole = std::numeric_limits<qint64>::max(),
                     .small = -7,
                     .real = 0.1,
                     .text = u"引\"号\\ \n\t\u0001\u007f😀"_s,
                     .mood = Mood::loud,
                     .list = {1, 2},
                     .map = {{u"键"_s, 1.5}},
                     .maybe = {},
                     .opaque = boost::json::parse(R"({"a":[1,null,{"b":9007199254740993}]})")};
    const QByteArray text = Json::encode(value);
    EXPECT_FALSE(text.contains("maybe"));
    const auto back = Json::decode<Everything>(text);
    ASSERT_TRUE(back) << back.error().path.toStdString();
    EXPECT_EQ(*back, value);
}

TEST(JsonTest, KeysInAnyOrderAndUnknownOnesIgnored) {
    const auto value = Json::decode<Everything>(
        R"({"opaque":null,"map":{},"x":[{}],"maybe":null,"list":[],"mood":"calm","text":"","real":1,"small":1,"whole":2,"flag":false})");
    ASSERT_TRUE(value);
    EXPECT_EQ(value->whole, 2);
    EXPECT_EQ(value->real, 1.0);
}

TEST(JsonTest, WholeNumbers) {
    struct Case {
        const char *text;
        std::optional<qint64> value;
    };
    for (const auto &[text, value] : std::initializer_list<Case>{
             {"9007199254740993", 9007199254740993},
             {"-9223372036854775808", std::numeric_limits<qint64>::min()},
             {"3.0", 3},
             {"1e3", 1000},
             {"3.5", {}},
             {"9223372036854775808", {}},
             {"1e19", {}},
             {"1e999", {}},
             {"-0", 0},
             {"01", {}},
             {"\"3\"", {}},
             {"true", {}},
             {"null", {}},
         }) {
        const auto read = Json::decode<Number>(QByteArray("{\"n\":") + text + "}");
        EXPECT_EQ(read ? std::optional(read->n) : std::nullopt, value) << text;
    }
}

TEST(JsonTest, NumbersBeyondADouble) {
    const auto carried = Json::decode<boost::json::value>(R"({"k\u0001":[1e600,-1e600,1e300]})");
    ASSERT_TRUE(carried);
    const QByteArray text = Json::encode(*carried);
    const auto again = Json::decode<boost::json::value>(text);
    ASSERT_TRUE(again) << text.constData();
    EXPECT_EQ(*again, *carried);
    const auto typed = Json::decode<QList<double>>("[1e300,1e600]");
    ASSERT_FALSE(typed);
    EXPECT_EQ(typed.error().kind, JsonFailure::Kind::Corrupted);
    EXPECT_EQ(typed.error().path, u"[1]"_s);
}

TEST(JsonTest, RefusesWhatIsNoJson) {
    for (const QByteArray text :
         {"", " ", "{\"n\":1}x", "{\"n\":1,}", "{'n':1}", "{\"n\":1", "\xff", "{\"n\":NaN}", "{\"n\":1 /*c*/}",
          "\xef\xbb\xbf{\"n\":1}", "{\"n\":\"\x01\"}", "{\"\xc3\x28\":1,\"n\":1}"})
        EXPECT_FALSE(Json::decode<Number>(text)) << text.constData();
    EXPECT_FALSE(Json::decode<boost::json::value>(QByteArray(300, '[') + QByteArray(300, ']')));
    EXPECT_TRUE(Json::decode<boost::json::value>(QByteArray(200, '[') + QByteArray(200, ']')));
}

TEST(JsonTest, RealNumbersToTheLastDigit) {
    struct Case {
        QByteArray text;
        std::optional<double> value;
    };
    for (const auto &[text, value] : std::initializer_list<Case>{
             {"1.3927926388013963e-143", 1.3927926388013963e-143},
             {"1.917377330098547e+208", 1.917377330098547e+208},
             {"0.1", 0.1},
             {"-2.5e-3", -2.5e-3},
             {"-0.0", -0.0},
             {"3.0", 3.0},
             {"5e-324", 5e-324},
             {"1e-400", 0.0},
             {"123456789012345678901234567890", 123456789012345678901234567890.0},
             {"1e999", {}},
             {"-1e999", {}},
         }) {
        const auto read = Json::decode<double>(text);
        EXPECT_EQ(read ? std::optional(*read) : std::nullopt, value) << text.constData();
        // What is only carried comes back as it was, a real number as a real number.
        const auto carried = Json::decode<boost::json::value>(text).value();
        EXPECT_EQ(Json::decode<boost::json::value>(Json::encode(carried)).value(), carried) << text.constData();
    }
    EXPECT_EQ(Json::encode(3.0), "3");
    EXPECT_TRUE(std::signbit(Json::decode<double>(Json::encode(-0.0)).value()));
}

TEST(JsonTest, LargestWholeNumberAndMarkedTextComeBack) {
    const auto largest = std::numeric_limits<quint64>::max();
    EXPECT_EQ(Json::encode(largest), "18446744073709551615");
    EXPECT_EQ(Json::decode<quint64>(Json::encode(largest)), largest);
    const QString marked = u"\ufeff\ufeff正文"_s;
    EXPECT_EQ(Json::decode<QString>(Json::encode(marked)), marked);
}

TEST(JsonTest, UnknownEnumerator) {
    const auto read = Json::fromValue<Mood>(boost::json::value("wild"));
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().kind, JsonFailure::Kind::Corrupted);
}

} // namespace lmp
