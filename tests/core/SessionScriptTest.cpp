#include "core/SessionScript.h"

#include "core/Json.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

TEST(SessionScriptTest, HoldsAnyValueSafely) {
    const QString before = u"try {\n  localStorage.setItem('lmp-app-session-v1', "_s;
    const QString after = u");\n} catch (e) { /* 存不了就走未登录态，页面会如实说 */ }"_s;
    for (const QString &name : {u"plain"_s, u"'\"\\`${x}"_s, u"</script><script>alert(1)//<!--"_s,
                                u"\u2028\u2029\n\r\t\u0001"_s, u"小林 🙂"_s, u"'); evil(); ('"_s}) {
        const QString script = SessionScript::text(u"t-"_s + name, UserInfo{.id = u"u"_s, .username = name});
        ASSERT_TRUE(script.startsWith(before) && script.endsWith(after)) << script.toStdString();
        const QString literal = script.sliced(before.size(), script.size() - before.size() - after.size());
        for (const QString &harmful : {u"<"_s, u"\u2028"_s, u"\u2029"_s, u"\n"_s, u"\r"_s})
            EXPECT_FALSE(literal.contains(harmful)) << literal.toStdString();
        // A string of JavaScript in double quotes with these escapes is one of JSON too.
        const auto stored = Json::decode<QString>(literal.toUtf8());
        ASSERT_TRUE(stored) << literal.toStdString();
        const auto session = boost::json::parse(stored->toStdString());
        EXPECT_EQ(session.at("token"), boost::json::value((u"t-"_s + name).toStdString()));
        EXPECT_EQ(session.at("user").at("username"), boost::json::value(name.toStdString()));
    }
    EXPECT_FALSE(SessionScript::text(u"t"_s, {}).contains(u"user"_s));
}

} // namespace lmp
