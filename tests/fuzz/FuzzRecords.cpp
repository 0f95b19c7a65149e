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
    if (!again || *again != *first || Json::encode(*again) != text)
        std::abort();
}

} // namespace lmp
