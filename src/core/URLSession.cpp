#include "core/URLSession.h"

#include "core/RequestURL.h"
#include "core/RestingNetworkAccess.h"

#include <QCoreApplication>
#include <QNetworkInterface>
#include <QNetworkProxyFactory>
#include <QThread>
#include <QThreadStorage>

#include <algorithm>

namespace lmp {

using namespace std::chrono_literals;

namespace {

/// The system's proxy, but never for this machine itself: a proxy could not reach it.
class ProxyFactory : public QNetworkProxyFactory {
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override {
        if (RequestURL::isLoopback(query.url()))
            return {QNetworkProxy(QNetworkProxy::NoProxy)};
        return systemProxyForQuery(query);
    }
};

QThreadStorage<QNetworkAccessManager *> requestManagers;
QThreadStorage<QNetworkAccessManager *> streamManagers;

} // namespace

URLSession URLSession::normal() {
    return {20s, 30s};
}

URLSession URLSession::slow() {
    return {90s, 180s, APIError::Session::Slow};
}

URLSession URLSession::events() {
    return {180s, 0s, APIError::Session::Normal, 1024 * 1024, true};
}

QNetworkAccessManager &URLSession::manager() const {
    auto &managers = streams ? streamManagers : requestManagers;
    if (!managers.hasLocalData()) {
        auto *made = new RestingNetworkAccess;
        made->setAutoDeleteReplies(false);
        made->setProxyFactory(new ProxyFactory);
        managers.setLocalData(made);
        // Qt clears the main thread's storage too late, if at all, for the manager's own thread to end in order.
        if (qApp && qApp->thread() == QThread::currentThread())
            qAddPostRoutine(streams ? [] { streamManagers.setLocalData(nullptr); }
                                    : [] { requestManagers.setLocalData(nullptr); });
    }
    return *managers.localData();
}

bool URLSession::systemIsOnline() {
    return std::ranges::any_of(QNetworkInterface::allInterfaces(), [](const QNetworkInterface &interface) {
        const auto flags = interface.flags();
        return flags.testFlag(QNetworkInterface::IsUp) && flags.testFlag(QNetworkInterface::IsRunning) &&
               !flags.testFlag(QNetworkInterface::IsLoopBack) && !interface.addressEntries().isEmpty();
    });
}

} // namespace lmp
