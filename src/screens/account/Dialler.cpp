#include "screens/account/Dialler.h"

#include "core/PlainLabel.h"
#include "identity/CrisisTexts.h"
#include "platform/ExternalOpener.h"

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

} // namespace

bool Dialler::mayDial(const QString &phone) {
    return std::ranges::any_of(phone, isDigit) &&
           std::ranges::all_of(phone, [](QChar c) { return isDigit(c) || u"+- "_s.contains(c); });
}

QCoro::Task<QString> Dialler::dial(ExternalOpener &opener, QString phone) {
    if (!mayDial(phone))
        co_return u"这一条里有不能拨的字符，所以没有拨：%1。请核对之后用手机拨。"_s.arg(PlainLabel::line(phone));
    if (!co_await opener.openAndHear(CrisisTexts::dialURL(phone)))
        co_return u"这台电脑没能拨出去，请用手机拨：%1。"_s.arg(phone);
    co_return QString();
}

} // namespace lmp
