#include "screens/kit/LMPFonts.h"

#include <QFontDatabase>
#include <QGuiApplication>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

QString LMPFonts::family() {
    static const QString found = [] {
        const QStringList wished{u"PingFang SC"_s, u"Noto Sans CJK SC"_s, u"Source Han Sans SC"_s};
        const auto first =
            std::ranges::find_if(wished, [](const QString &one) { return QFontDatabase::hasFamily(one); });
        return first != wished.cend() ? *first : QGuiApplication::font().family();
    }();
    return found;
}

QString LMPFonts::monoFamily() {
#ifdef Q_OS_MACOS
    return u"Menlo"_s;
#else
    return u"Noto Sans Mono CJK SC"_s;
#endif
}

} // namespace lmp
