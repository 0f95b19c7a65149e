#pragma once

#include <QByteArray>
#include <QString>

namespace lmp {

/// One server-sent event. A value; what it means is the consumer's affair.
struct SSEEvent {
    QString event;   ///< its name; "message" when the stream gave none
    QByteArray data; ///< its data lines, joined with a line feed
    bool operator==(const SSEEvent &) const = default;
};

} // namespace lmp
