#include "screens/account/Dialler.h"

#include "core/Detach.h"
#include "core/PlainLabel.h"
#include "identity/CrisisTexts.h"
#include "platform/ExternalOpener.h"

#include <QPointer>

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

void Dialler::dial(const QString &number) {
    detach(dialNow(number), "Dialler::dial");
}

void Dialler::forget() {
    m_message.clear();
    ++m_calls;
}

QCoro::Task<> Dialler::dialNow(QString number) {
    const QPointer self(this);
    const auto call = ++m_calls;
    // What was said of the call before: said anew, it is noticed.
    if (!std::exchange(m_message, {}).isEmpty())
        Q_EMIT messageChanged();
    QString message = co_await this->call(number);
    if (!self || call != m_calls)
        co_return;
    m_message = std::move(message);
    Q_EMIT messageChanged();
}

QCoro::Task<QString> Dialler::call(QString number) {
    if (!mayDial(number))
        co_return u"这一条里有不能拨的字符，所以没有拨：%1。请核对之后用手机拨。"_s.arg(PlainLabel::line(number));
    if (!co_await m_opener.openAndHear(CrisisTexts::dialURL(number)))
        co_return u"这台电脑没能拨出去，请用手机拨：%1。"_s.arg(number);
    co_return QString();
}

} // namespace lmp
