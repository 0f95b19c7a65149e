#include "core/RestingNetworkAccess.h"

#include <QNetworkReply>

namespace lmp {

RestingNetworkAccess::RestingNetworkAccess(std::chrono::milliseconds after) {
    m_idle.setInterval(after);
    m_idle.setSingleShot(true);
    // Its thread ends with the connections.
    connect(&m_idle, &QTimer::timeout, this, &QNetworkAccessManager::clearConnectionCache);
}

RestingNetworkAccess::~RestingNetworkAccess() {
    // Qt deletes them too, but only when there is nobody left to count them.
    qDeleteAll(findChildren<QNetworkReply *>());
}

QNetworkReply *RestingNetworkAccess::createRequest(Operation operation, const QNetworkRequest &request,
                                                   QIODevice *body) {
    m_idle.stop();
    ++m_replies;
    QNetworkReply *reply = QNetworkAccessManager::createRequest(operation, request, body);
    connect(reply, &QObject::destroyed, this, [this] {
        if (--m_replies == 0)
            m_idle.start();
    });
    return reply;
}

} // namespace lmp
