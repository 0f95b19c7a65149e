#include "core/SessionScript.h"

#include "core/Json.h"

namespace lmp {

using namespace Qt::StringLiterals;

struct WebSession {
    QString token;
    std::optional<UserInfo> user;
};
BOOST_DESCRIBE_STRUCT(WebSession, (), (token, user))

namespace {

/// A JSON string is a string of JavaScript but for two line ends of Unicode, which older engines end a literal at; and
/// inside a page "</script" and "<!--" would be read by the page first.
QString literal(const QString &text) {
    QString quoted = QString::fromUtf8(Json::encode(text));
    quoted.replace(u'<', u"\\u003c"_s);
    quoted.replace(u'>', u"\\u003e"_s);
    quoted.replace(QChar(0x2028), u"\\u2028"_s);
    quoted.replace(QChar(0x2029), u"\\u2029"_s);
    return quoted;
}

} // namespace

QString SessionScript::text(const QString &token, const std::optional<UserInfo> &user) {
    const QString session = QString::fromUtf8(Json::encode(WebSession{token, user}));
    return u"try {\n  localStorage.setItem('lmp-app-session-v1', "_s + literal(session) +
           u");\n} catch (e) { /* 存不了就走未登录态，页面会如实说 */ }"_s;
}

} // namespace lmp
