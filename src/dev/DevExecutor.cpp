#include "dev/DevExecutor.h"

namespace lmp {

DevExecutor::DevExecutor(const QString &name)
    : m_context(new QObject) {
    m_thread.setObjectName(name);
    m_context->moveToThread(&m_thread);
    m_thread.start();
}

DevExecutor::~DevExecutor() {
    m_thread.quit();
    m_thread.wait();
    delete m_context;
}

void DevExecutor::spawn(QCoro::Task<> task, const char *what) {
    begin();
    detach(counted(this, std::move(task)), what);
}

QCoro::Task<> DevExecutor::counted(DevExecutor *self, QCoro::Task<> task) {
    struct End {
        DevExecutor *executor;
        ~End() { executor->end(); }
    } const end{self};
    co_await task;
}

void DevExecutor::end() {
    // Through the event loop, so that the frames that just ended are gone before the thread is.
    if (--m_running == 0 && m_finishing)
        m_thread.quit();
}

void DevExecutor::finish(std::function<void()> last) {
    Q_ASSERT(!isCurrent());
    begin();
    post([this, last = std::move(last)] {
        last();
        m_finishing = true;
        end();
    });
    m_thread.wait();
}

} // namespace lmp
