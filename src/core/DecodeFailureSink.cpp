#include "core/DecodeFailureSink.h"

#include <QCoreApplication>

namespace lmp {

namespace {

DecodeFailureSink::Sink &installed() {
    static DecodeFailureSink::Sink sink;
    return sink;
}

} // namespace

void DecodeFailureSink::install(Sink sink) {
    installed() = std::move(sink);
}

void DecodeFailureSink::report(const QString &endpoint, const QString &reason, int status) {
    if (!qApp)
        return;
    QMetaObject::invokeMethod(
        qApp,
        [=] {
            if (installed())
                installed()(endpoint, reason, status);
        },
        Qt::QueuedConnection);
}

} // namespace lmp
