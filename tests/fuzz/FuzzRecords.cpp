#include "FuzzTarget.h"

#include "core/Json.h"
#include "core/JsonRest.h"

#include <cstdlib>

namespace lmp {

namespace {

enum class Kind { small, large };
BOOST_DESCRIBE_ENUM(Kind, small, large)

struct Leaf {
    QString text;
    std::optional<double> real;
    std::optional<Kind> kind;
    bool operator==(const Leaf &) const = default;
};
BOOST_DESCRIBE_STRUCT(Leaf, (), (text, real, kind))

/// A field of every kind that a record can have.
struct Tree {
    std::optional<bool> flag;
    std::optional<qint64> whole;
    std::optional<int> narrow;
    std::optional<QList<Leaf>> leaves;
    std::optional<QMap<QString, Leaf>> named;
    std::optional<boost::json::value> opaque;
    JsonRest rest;
    bool operator==(const Tree &) const = default;
};
BOOST_DESCRIBE_STRUCT(Tree, (), (flag, whole, narrow, leaves, named, opaque, rest))

/// Whether every number in `text` is one that Boost.JSON 1.81 reads exactly: its reals are off by the last bit beyond
/// fifteen digits and with large exponents.
bool numbersAreExact(QByteArrayView text) {
    int digits = 0;
    for (const char c : text) {
        const bool digit = c >= '0' && c <= '9';
        if (digits > 15 || (digits > 0 && (c == 'e' || c == 'E')))
            return false;
        digits = digit ? digits + 1 : (c == '.' ? digits : 0);
    }
    return digits <= 15;
}

} // namespace

/// What was understood once is understood again as the same after it was written down.
void fuzzRecords(QByteArrayView input) {
    const auto first = Json::decode<Tree>(input);
    if (!first) {
        if (first.error().describe(Json::typeName<Tree>()).isEmpty())
            std::abort();
        return;
    }
    const QByteArray text = Json::encode(*first);
    const auto again = Json::decode<Tree>(text);
    if (!again || (numbersAreExact(input) && Json::encode(*again) != text))
        std::abort();
}

} // namespace lmp
