#include "FuzzTarget.h"

#include "dev/GitOutput.h"
#include "dev/LineFramer.h"
#include "dev/StderrTail.h"

#include <cstdlib>

namespace lmp {

namespace {

/// Low, so that inputs of a fuzzer's size reach it.
constexpr qsizetype limit = 48;

/// What comes out when `bytes` arrive in pieces of `size`.
struct Seen {
    QByteArray lines;
    QString errors;
    bool broken = false;
    bool operator==(const Seen &) const = default;
};
Seen seen(QByteArrayView bytes, qsizetype size) {
    LineFramer framer(limit);
    StderrTail tail;
    Seen seen;
    for (qsizetype at = 0; at < bytes.size(); at += size) {
        const auto piece = bytes.sliced(at, std::min(size, bytes.size() - at));
        seen.lines += framer.feed(piece);
        tail.feed(piece);
    }
    seen.lines += framer.finish();
    seen.errors = tail.text();
    seen.broken = framer.isBroken();
    return seen;
}

/// The same rules, as simply as they can be written.
QByteArray simply(QByteArrayView bytes) {
    QByteArray lines;
    while (!bytes.isEmpty()) {
        const qsizetype end = bytes.indexOf('\n');
        const auto line = end < 0 ? bytes : bytes.first(end);
        if (line.size() > limit)
            break;
        if (line.isValidUtf8())
            lines += line.toByteArray() + '\n';
        bytes = bytes.sliced(std::min(line.size() + 1, bytes.size()));
    }
    return lines;
}

} // namespace

/// A child's output means the same however it arrives, and what git prints may be anything.
void fuzzChildOutput(QByteArrayView input) {
    const Seen whole = seen(input, std::max<qsizetype>(input.size(), 1));
    if (whole.lines != simply(input) || whole.errors.contains(u'\x1b'))
        std::abort();
    for (const qsizetype size : {1, 3, 7}) {
        if (seen(input, size) != whole)
            std::abort();
    }
    const QByteArray bytes = input.toByteArray();
    GitOutput::status(bytes);
    GitOutput::numstat(bytes);
    GitOutput::diff(bytes, 5);
}

} // namespace lmp
