#pragma once

#include "core/Json.h"

#include <QHash>
#include <QStringList>
#include <QTcpServer>
#include <QUrl>

namespace lmp {

/// The other side of the wire for the gallery: answers each path with what it was told, on a loopback port of its own.
///
/// One for each scene, owned by its stage, UI thread. A path nobody spoke of is answered with 404 and remembered, so
/// that a scene which shows an error by accident is noticed.
class GalleryService : public QObject {
    Q_OBJECT
public:
    struct Answer {
        int status = 200;
        QByteArray contentType = QByteArrayLiteral("application/json");
        QByteArray body = {};
        bool ends = true; ///< else the connection stays open after the body, and nothing more comes
    };

    GalleryService();

    /// The root of this service; empty when no port could be had.
    QString site() const;

    /// Answers requests for `path` ("/api/app/conversations") from here on. A path may go on with its query; then it
    /// serves for that query alone.
    void answer(const QString &path, Answer answer);
    template <class T>
    void reply(const QString &path, const T &record) {
        answer(path, Answer{.body = Json::encode(record)});
    }
    /// A refusal with the sentence that the person will read.
    void refuse(const QString &path, int status, const QString &code, const QString &reason);
    /// A stream of events, each a record's JSON.
    void stream(const QString &path, const QByteArrayList &events, bool ends);
    /// Takes the request and says nothing, ever.
    void stall(const QString &path);

    /// Paths that were asked for and have no answer.
    const QStringList &unknown() const { return m_unknown; }

private:
    void read(QTcpSocket *socket);
    void write(QTcpSocket *socket, const QString &target);

    QHash<QString, Answer> m_answers;
    QHash<QTcpSocket *, QByteArray> m_partial;
    QStringList m_unknown;
    QTcpServer m_server; ///< last, since its sockets still report to the members above while it dies
};

} // namespace lmp
