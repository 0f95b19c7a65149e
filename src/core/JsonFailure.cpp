#include "core/JsonFailure.h"

namespace lmp {

using namespace Qt::StringLiterals;

QString JsonFailure::describe(const QString &type) const {
    const QString place = path.isEmpty() ? u"(根)"_s : path;
    const QString opening = u"数据格式对不上："_s + type;
    switch (kind) {
    case Kind::MissingKey:
        return opening + u" 要求字段「"_s + key + u"」，服务端没给（位置 "_s + place + u"）"_s;
    case Kind::NullValue:
        return opening + u" 的 "_s + place + u" 是必填 "_s + expected + u"，服务端给了 null"_s;
    case Kind::TypeMismatch:
        return opening + u" 的 "_s + place + u" 期望 "_s + expected + u"，服务端给的不是"_s;
    case Kind::Corrupted:
        return opening + u" 的 "_s + place + u" 内容无法解析"_s;
    case Kind::Other:
        break;
    }
    return u"数据格式对不上（"_s + type + u"）"_s;
}

} // namespace lmp
