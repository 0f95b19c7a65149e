#pragma once

#include <QDateTime>
#include <QString>

namespace lmp {

/// A point in time as a list tells it. Free of state; any thread.
class ChatDateText {
public:
    /// "刚刚", "今天 14:03", "昨天 14:03", "11月3日", "2025年11月3日", in the time zone of `now`; empty for an invalid
    /// time.
    static QString of(const QDateTime &then, const QDateTime &now);
    /// What `of` says of the last minute.
    static QString justNow();
};

} // namespace lmp
