#include "identity/CrisisTexts.h"

namespace lmp {

using namespace Qt::StringLiterals;

QString CrisisTexts::cardWithoutNumbers() {
    return u"这个地区还没有经核实的号码清单，所以这里不给号码——请联系当地紧急服务或你信任的人。"_s;
}

QString CrisisTexts::entry() {
    return u"现在很难受？先看这个"_s;
}

QString CrisisTexts::entrySubtitle() {
    return u"真人热线置顶 · 不用登录 · 不记录你来过"_s;
}

QString CrisisTexts::regionWithoutList() {
    return u" · 暂无清单"_s;
}

QString CrisisTexts::pageWithoutNumbers() {
    return u"这个地区还没有经核实的紧急号码清单——请联系当地紧急服务或信任的人。"_s;
}

QString CrisisTexts::assumedRegion() {
    return u"没读到你的所在地，先按中国大陆给。不在中国大陆的话，在上面换一个地区。"_s;
}

QString CrisisTexts::loadFailed(const QString &reason) {
    // The sentence around it ends for both.
    const QString said = reason.endsWith(u'。') ? reason.chopped(1) : reason;
    return u"清单没读到（"_s + said + u"）。请联系当地紧急服务，或找一个你信任的人。"_s;
}

QString CrisisTexts::back() {
    return u"回到你刚才在的地方"_s;
}

QStringList CrisisTexts::rules() {
    return {u"AI 不接手：不替你打、不替你回、不分析你"_s, u"不记分：不计活跃、不计连续天数、不进推荐信号"_s,
            u"不追着你：不会有回访或关怀推送"_s, u"关掉这页会回到你刚才在的地方，不会被送回首页"_s};
}

QString CrisisTexts::dialLink(const QString &phone) {
    return u"tel://"_s + phone;
}

QUrl CrisisTexts::dialURL(const QString &phone) {
    QString digits;
    bool any = false;
    for (const QChar c : phone) {
        if (c >= u'0' && c <= u'9')
            any = true;
        else if (!u"+-.()*#"_s.contains(c))
            continue;
        digits += c;
    }
    if (!any)
        return {};
    QUrl url;
    url.setScheme(u"tel"_s);
    url.setPath(digits, QUrl::DecodedMode);
    return url;
}

} // namespace lmp
