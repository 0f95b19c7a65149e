#include "core/JsonReader.h"

namespace lmp::detail {

using namespace Qt::StringLiterals;

QString JsonPlace::text() const {
    if (!outer)
        return {};
    const QString before = outer->text();
    return index >= 0 ? before + u'[' + QString::number(index) + u']'
                      : before + u'.' + QString::fromUtf8(key.data(), qsizetype(key.size()));
}

bool JsonReader::missing(const JsonPlace &at, std::string_view key) {
    failure = {JsonFailure::Kind::MissingKey, at.text(), QString::fromUtf8(key.data(), qsizetype(key.size())), {}};
    return false;
}

bool JsonReader::fail(JsonFailure::Kind kind, const JsonPlace &at, const QString &expected) {
    failure = {kind, at.text(), {}, expected};
    return false;
}

} // namespace lmp::detail
