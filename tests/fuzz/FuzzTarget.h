#pragma once

#include <QByteArrayView>

namespace lmp {

/// Each takes arbitrary bytes and aborts when a promise about them is broken. Free of state; any thread.
void fuzzChildOutput(QByteArrayView input);
void fuzzClaude(QByteArrayView input);
void fuzzCommands(QByteArrayView input);
void fuzzEvents(QByteArrayView input);
void fuzzMarkdown(QByteArrayView input);
void fuzzRecords(QByteArrayView input);

} // namespace lmp
