#pragma once

#include <QNetworkAccessManager>
#include <QTimer>

#include <chrono>

namespace lmp {

/// A network access manager that holds a thread only while there is something to do, and a little longer for what
/// comes at once after it.
///
/// Belongs to the thread that made it, which needs an event loop and waits for the other's end: a millisecond, when
/// nothing is under way. What is forgotten when it rests are connections, which are worth nothing to requests that ask
/// for theirs to be closed (see HTTPExchange).
class RestingNetworkAccess : public QNetworkAccessManager {
public:
    /// @param after how long there has been nothing to do
    explicit RestingNetworkAccess(std::chrono::milliseconds after = std::chrono::seconds(5));
    ~RestingNetworkAccess() override;

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request, QIODevice *body) override;

private:
    QTimer m_idle;
    int m_replies = 0; ///< that exist
};

} // namespace lmp
