#pragma once

#include <QImage>
#include <QNetworkAccessManager>
#include <QObject>
#include <QUrl>

class QNetworkReply;

namespace lmp {

/// Gets one image from the network that somebody asked to see.
///
/// Lives on the UI thread, owned by its RemoteImage; takes the image apart on the thread pool. Only https, also behind
/// a redirection; no cookies are kept. Ends with exactly one of its signals, or none once it is deleted. What is too
/// large, too slow or no image fails with a sentence for the reader.
class ImageDownload : public QObject {
    Q_OBJECT

public:
    struct Limits {
        qint64 bytes = 8 * 1024 * 1024;
        qint64 pixels = 40'000'000; ///< of the image as it was sent
        int side = 1600;            ///< of the image as it is handed over
        int milliseconds = 20'000;
        QString scheme = QStringLiteral("https");
    };

    explicit ImageDownload(QObject *parent = nullptr)
        : ImageDownload(Limits(), parent) {}
    explicit ImageDownload(Limits limits, QObject *parent = nullptr);

    void start(const QUrl &url);
    /// Whether `start` would ask the network for this address.
    [[nodiscard]] bool takes(const QUrl &url) const;

Q_SIGNALS:
    void done(const QImage &image);
    void failed(const QString &sentence);

private:
    void read();
    void fail(const QString &sentence);
    void decode();

    Limits m_limits;
    QNetworkAccessManager m_network;
    QNetworkReply *m_reply = nullptr; ///< owned by m_network
    QByteArray m_bytes;
};

} // namespace lmp
