#include "platform/SystemKeychain.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QFile>
#include <QThread>

#include <qt6keychain/keychain.h>

#include <coroutine>
#include <memory>

#ifdef Q_OS_LINUX
#include "platform/SecretService.h"

#include <glib.h>
#endif

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// What a job came to.
struct Outcome {
    QKeychain::Error code = QKeychain::NoError;
    QString reason;
    QString secret;
};

/// Long enough for a thread that is idle to end, and no more: one that hangs is left to the end of the process.
constexpr unsigned long farewell = 200; // ms

/// The one thread on which jobs run. The library queues jobs in an object that belongs to the thread of the first job,
/// so there is never a second one.
class JobThread {
public:
    static QObject *context() {
        static JobThread *const thread = [] {
            auto *made = new JobThread;
            qAddPostRoutine([] {
                QThread *ending = context()->thread();
                ending->requestInterruption();
                ending->quit();
                ending->wait(farewell);
            });
            return made;
        }();
        return &thread->m_context;
    }
    /// How many jobs have begun and not ended. For the thread alone.
    static inline int running = 0;

private:
    JobThread() {
        m_thread.setObjectName(u"lmp.keychain"_s);
#ifdef Q_OS_LINUX
        // It begins another for each read, and would keep it waiting for 15 s.
        g_thread_pool_set_max_idle_time(2000); // ms
#endif
        m_context.moveToThread(&m_thread);
        m_thread.start();
    }

    QThread m_thread;
    QObject m_context;
};

/// Why the platform's keychain cannot even be asked; empty when it can.
QString obstacle() {
#ifdef Q_OS_LINUX
    // Without an address the library would start a bus of its own, on which no keychain lives.
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") &&
        (runtime.isEmpty() || !QFile::exists(runtime + u"/bus"_s)))
        return u"no session bus"_s;
    // The Secret Service is reached through GLib, whose callbacks need its event loop.
    const auto *dispatcher = QAbstractEventDispatcher::instance();
    if (!dispatcher || !dispatcher->inherits("QEventDispatcherGlib"))
        return u"no GLib event loop"_s;
#endif
    return {};
}

/// Shared by the waiting coroutine and the job, either of which may end first. Everything but `outcome` belongs to the
/// waiting thread.
struct Wait {
    std::coroutine_handle<> handle;
    Outcome outcome;
    QObject *receiver = new QObject;
    ~Wait() { receiver->deleteLater(); }
};

using MakeJob = std::function<QKeychain::Job *()>;
/// Whether the answer is known to be that there is no such item.
using IsKnownMissing = std::function<bool()>;

/// Whether it is known without the library, whose own libraries take as long to load as a screen to make, that there is
/// no such item.
bool lacks([[maybe_unused]] const QString &service, [[maybe_unused]] const QString &account) {
#ifdef Q_OS_LINUX
    return SecretService::lacks(service, account);
#else
    return false;
#endif
}

void answer(const std::shared_ptr<Wait> &wait, Outcome outcome) {
    QMetaObject::invokeMethod(
        wait->receiver,
        [wait, outcome = std::move(outcome)] {
            wait->outcome = outcome;
            if (const auto handle = std::exchange(wait->handle, nullptr))
                handle.resume();
        },
        Qt::QueuedConnection);
}

void runJob(const MakeJob &make, const IsKnownMissing &isKnownMissing, const std::shared_ptr<Wait> &wait) {
    if (const QString reason = obstacle(); !reason.isEmpty()) {
        answer(wait, {QKeychain::NoBackendAvailable, reason, {}});
        return;
    }
    // What is being written is not there yet, and what is being removed still is.
    if (isKnownMissing && JobThread::running == 0 && isKnownMissing()) {
        answer(wait, {QKeychain::EntryNotFound, {}, {}});
        return;
    }
    // The program has ended meanwhile, and with it whoever asked.
    if (QThread::currentThread()->isInterruptionRequested())
        return;
    QKeychain::Job *job = make();
    job->setInsecureFallback(false);
    ++JobThread::running;
    // The library itself refers to a job that runs, so it is never deleted before its end.
    QObject::connect(job, &QKeychain::Job::finished, job, [wait](QKeychain::Job *done) {
        --JobThread::running;
        auto *read = qobject_cast<QKeychain::ReadPasswordJob *>(done);
        answer(wait, {done->error(), done->errorString(), read ? read->textData() : QString()});
    });
    job->start();
}

/// Runs a job on its thread while a coroutine waits.
class JobAwaiter {
public:
    explicit JobAwaiter(MakeJob make, IsKnownMissing isKnownMissing = {})
        : m_make(std::move(make))
        , m_isKnownMissing(std::move(isKnownMissing)) {}
    ~JobAwaiter() { m_wait->handle = nullptr; }
    JobAwaiter(const JobAwaiter &) = delete;
    JobAwaiter &operator=(const JobAwaiter &) = delete;

    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> handle) {
        m_wait->handle = handle;
        QMetaObject::invokeMethod(
            JobThread::context(),
            [make = m_make, isKnownMissing = m_isKnownMissing, wait = m_wait] { runJob(make, isKnownMissing, wait); },
            Qt::QueuedConnection);
    }
    Outcome await_resume() const { return m_wait->outcome; }

private:
    MakeJob m_make;
    IsKnownMissing m_isKnownMissing;
    std::shared_ptr<Wait> m_wait = std::make_shared<Wait>();
};

Keychain::Error failure(const Outcome &outcome) {
    switch (outcome.code) {
    case QKeychain::NoBackendAvailable:
    case QKeychain::NotImplemented:
        return {true, outcome.reason};
    case QKeychain::AccessDenied:
    case QKeychain::AccessDeniedByUser:
        return {true, outcome.reason, true};
#ifdef Q_OS_LINUX
    case QKeychain::OtherError: // a bus on which nobody keeps secrets is told no better
        return {true, outcome.reason};
#endif
    default:
        return {false, outcome.reason};
    }
}

template <class Job>
QKeychain::Job *made(const QString &service, const QString &account) {
    auto *job = new Job(service);
    job->setKey(account);
    return job;
}

} // namespace

QCoro::Task<Keychain::Result<std::optional<QString>>> SystemKeychain::read(QString service, QString account) {
    const Outcome outcome = co_await JobAwaiter([=] { return made<QKeychain::ReadPasswordJob>(service, account); },
                                                [=] { return lacks(service, account); });
    if (outcome.code == QKeychain::EntryNotFound)
        co_return std::optional<QString>();
    if (outcome.code != QKeychain::NoError)
        co_return std::unexpected(failure(outcome));
    co_return std::optional(outcome.secret);
}

QCoro::Task<Keychain::Result<void>> SystemKeychain::write(QString service, QString account, QString secret) {
    const Outcome outcome = co_await JobAwaiter([=] {
        auto *job = new QKeychain::WritePasswordJob(service);
        job->setKey(account);
        job->setTextData(secret);
        return job;
    });
    if (outcome.code != QKeychain::NoError)
        co_return std::unexpected(failure(outcome));
    co_return Result<void>();
}

QCoro::Task<Keychain::Result<void>> SystemKeychain::remove(QString service, QString account) {
    const Outcome outcome = co_await JobAwaiter([=] { return made<QKeychain::DeletePasswordJob>(service, account); });
    if (outcome.code != QKeychain::NoError && outcome.code != QKeychain::EntryNotFound)
        co_return std::unexpected(failure(outcome));
    co_return Result<void>();
}

} // namespace lmp
