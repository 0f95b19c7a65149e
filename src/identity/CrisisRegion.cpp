#include "identity/CrisisRegion.h"

namespace lmp {

using namespace Qt::StringLiterals;

const QList<CrisisRegion> &CrisisRegion::all() {
    static const QList<CrisisRegion> regions{
        {u"CN"_s, u"中国大陆"_s}, {u"HK"_s, u"中国香港"_s}, {u"MO"_s, u"中国澳门"_s}, {u"TW"_s, u"中国台湾"_s},
        {u"SG"_s, u"新加坡"_s},   {u"MY"_s, u"马来西亚"_s}, {u"JP"_s, u"日本"_s},     {u"KR"_s, u"韩国"_s},
        {u"US"_s, u"美国"_s},     {u"CA"_s, u"加拿大"_s},   {u"GB"_s, u"英国"_s},     {u"IE"_s, u"爱尔兰"_s},
        {u"DE"_s, u"德国"_s},     {u"FR"_s, u"法国"_s},     {u"AU"_s, u"澳大利亚"_s}, {u"NZ"_s, u"新西兰"_s},
    };
    return regions;
}

QString CrisisRegion::labelOf(const QString &code) {
    for (const CrisisRegion &region : all()) {
        if (region.code.compare(code, Qt::CaseInsensitive) == 0)
            return region.label;
    }
    return code;
}

} // namespace lmp
