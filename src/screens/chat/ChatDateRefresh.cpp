#include "screens/chat/ChatDateRefresh.h"

#include "core/Detach.h"
#include "platform/Clock.h"
#include "screens/chat/ChatDateText.h"

namespace lmp {

using namespace std::chrono_literals;

ChatDateRefresh::ChatDateRefresh(QAbstractItemModel &list, int role, Clock &clock)
    : QObject(&list)
    , m_list(list)
    , m_role(role)
    , m_clock(clock) {
    connect(&list, &QAbstractItemModel::rowsInserted, this, &ChatDateRefresh::rowsCame);
    connect(&list, &QAbstractItemModel::modelReset, this, &ChatDateRefresh::rowsCame);
    connect(&list, &QAbstractItemModel::dataChanged, this, [this](const auto &, const auto &, const QList<int> &roles) {
        if (roles.isEmpty() || roles.contains(m_role))
            rowsCame();
    });
    wait();
}

ChatDateRefresh::~ChatDateRefresh() {
    m_stop.request_stop();
}

void ChatDateRefresh::rowsCame() {
    if (!m_recent)
        wait();
}

std::chrono::milliseconds ChatDateRefresh::untilNext() const {
    const auto says = [this](int row) {
        return m_list.index(row, 0).data(m_role).toString();
    };
    for (int row = 0; row < m_list.rowCount(); ++row) {
        if (says(row) == ChatDateText::justNow())
            return 1min;
    }
    const QDateTime now = m_clock.now().toLocalTime();
    // A second late rather than a moment early, and looked at again now and then: nobody knows how long a machine
    // slept.
    return std::min<std::chrono::milliseconds>(
        1h, std::chrono::milliseconds(now.msecsTo(now.date().addDays(1).startOfDay())) + 1s);
}

void ChatDateRefresh::wait() {
    m_stop.request_stop();
    m_stop = {};
    const auto duration = untilNext();
    m_recent = duration <= 1min;
    detach(
        [](QPointer<ChatDateRefresh> self, std::chrono::milliseconds time, std::stop_token stop) -> QCoro::Task<> {
            const bool passed = co_await self->m_clock.sleep(time, stop);
            if (!passed || !self || stop.stop_requested())
                co_return;
            self->m_recent = false;
            if (const int rows = self->m_list.rowCount(); rows > 0)
                Q_EMIT self->m_list.dataChanged(self->m_list.index(0, 0), self->m_list.index(rows - 1, 0),
                                                {self->m_role});
            if (self && !self->m_recent)
                self->wait();
        }(this, duration, m_stop.get_token()),
        "waiting for times to read differently");
}

} // namespace lmp
