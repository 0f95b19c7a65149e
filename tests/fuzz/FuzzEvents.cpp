#include "FuzzTarget.h"

#include "core/SSEParser.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace lmp {

namespace {

struct Seen {
    std::vector<SSEEvent> events;
    bool whole = true; ///< no limit was broken
};

/// What the parser makes of `bytes` when they arrive in pieces of the sizes that `cuts` names. The limits are low, so
/// that inputs of a fuzzer's size reach them.
Seen parsed(QByteArrayView bytes, QByteArrayView cuts) {
    SSEParser parser(SSEParser::Limits{.line = 48, .data = 96});
    Seen seen;
    qsizetype at = 0;
    for (qsizetype cut = 0; seen.whole && at < bytes.size(); ++cut) {
        const qsizetype size = cuts.isEmpty() ? bytes.size() : 1 + quint8(cuts[cut % cuts.size()]) % 32;
        const qsizetype piece = std::min(size, bytes.size() - at);
        seen.whole = parser.feed(bytes.sliced(at, piece), seen.events);
        at += piece;
    }
    seen.whole = seen.whole && parser.finish(seen.events);
    return seen;
}

bool same(const Seen &a, const Seen &b) {
    return a.whole == b.whole && std::ranges::equal(a.events, b.events, [](const SSEEvent &x, const SSEEvent &y) {
               return x.event == y.event && x.data == y.data;
           });
}

} // namespace

/// An event stream means the same wherever the network cuts it.
void fuzzEvents(QByteArrayView input) {
    const qsizetype head = std::min<qsizetype>(input.size(), 4);
    const QByteArrayView cuts = input.first(head), bytes = input.sliced(head);
    if (!same(parsed(bytes, {}), parsed(bytes, cuts)))
        std::abort();
}

} // namespace lmp
