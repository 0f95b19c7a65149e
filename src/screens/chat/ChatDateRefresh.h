#pragma once

#include <QAbstractItemModel>
#include <QPointer>
#include <stop_token>

namespace lmp {

class Clock;

/// Says that the times of a list read differently now: a minute after one that said "刚刚", and after midnight.
///
/// Owned by its list, which outlives nothing of it; the clock outlives both. UI thread; nothing fails. It asks the list
/// for nothing while no row comes and no time is up, so that an idle window stays idle.
class ChatDateRefresh : public QObject {
    Q_OBJECT
public:
    /// @param role under which the list gives the text
    ChatDateRefresh(QAbstractItemModel &list, int role, Clock &clock);
    ~ChatDateRefresh() override;

private:
    void rowsCame();
    void wait();
    std::chrono::milliseconds untilNext() const;

    QAbstractItemModel &m_list;
    int m_role;
    Clock &m_clock;
    std::stop_source m_stop;
    bool m_recent = false; ///< the wait under way ends within a minute
};

} // namespace lmp
