#include "screens/chat/ChatDateText.h"

#include <QTimeZone>

namespace lmp {

using namespace Qt::StringLiterals;

QString ChatDateText::justNow() {
    return u"刚刚"_s;
}

QString ChatDateText::of(const QDateTime &then, const QDateTime &now) {
    if (!then.isValid())
        return {};
    const QDateTime local = then.toTimeZone(now.timeZone());
    const auto seconds = then.secsTo(now);
    if (seconds >= 0 && seconds < 60)
        return justNow();
    const QDate day = local.date();
    const QString time = local.toString(u"HH:mm");
    if (day == now.date())
        return u"今天 "_s + time;
    if (day.addDays(1) == now.date())
        return u"昨天 "_s + time;
    const QString date = QString::number(day.month()) + u"月"_s + QString::number(day.day()) + u"日"_s;
    return day.year() == now.date().year() ? date : QString::number(day.year()) + u"年"_s + date;
}

} // namespace lmp
