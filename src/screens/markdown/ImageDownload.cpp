#include "ImageDownload.h"

#include <QBuffer>
#include <QFuture>
#include <QImageReader>
#include <QNetworkCookieJar>
#include <QNetworkReply>
#include <QPromise>
#include <QThreadPool>

#include <memory>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostRedirects = 5;

/// A jar with a hole in it.
class NoCookies : public QNetworkCookieJar {
public:
    using QNetworkCookieJar::QNetworkCookieJar;
    bool setCookiesFromUrl(const QList<QNetworkCookie> &, const QUrl &) override { return false; }
};

/// Formats that are nothing but pixels. A drawing is more: it can name files of this machine, and refer to itself until
/// nobody can draw it.
const QList<QByteArray> pixelFormats{"png", "jpeg", "gif", "webp", "bmp"};

QImage decoded(QByteArray bytes, const ImageDownload::Limits &limits) {
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    if (!pixelFormats.contains(reader.format()))
        return {};
    const QSize size = reader.size();
    if (!size.isValid() || qint64(size.width()) * size.height() > limits.pixels)
        return {};
    if (std::max(size.width(), size.height()) > limits.side)
        reader.setScaledSize(size.scaled(limits.side, limits.side, Qt::KeepAspectRatio).expandedTo({1, 1}));
    return reader.read();
}

} // namespace

ImageDownload::ImageDownload(Limits limits, QObject *parent)
    : QObject(parent)
    , m_limits(std::move(limits)) {
    m_network.setCookieJar(new NoCookies(&m_network));
}

bool ImageDownload::takes(const QUrl &url) const {
    return url.isValid() && url.scheme() == m_limits.scheme && !url.host().isEmpty() && url.userInfo().isEmpty();
}

void ImageDownload::start(const QUrl &url) {
    if (m_reply)
        return;
    if (!takes(url)) {
        Q_EMIT failed(u"只加载 https 的图片。"_s);
        return;
    }
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirects);
    request.setTransferTimeout(m_limits.milliseconds);
    m_reply = m_network.get(request);
    m_reply->setReadBufferSize(m_limits.bytes + 1);
    connect(m_reply, &QNetworkReply::redirected, this, [this](const QUrl &to) {
        if (takes(to))
            Q_EMIT m_reply->redirectAllowed();
        else
            fail(u"图片的地址转到了不是 https 的地方，没有加载。"_s);
    });
    connect(m_reply, &QNetworkReply::readyRead, this, &ImageDownload::read);
    connect(m_reply, &QNetworkReply::finished, this, [this] {
        if (!m_reply)
            return;
        if (m_reply->error() != QNetworkReply::NoError)
            return fail(u"图片没有加载成功。"_s);
        read();
        if (m_reply)
            decode();
    });
}

void ImageDownload::read() {
    if (!m_reply)
        return;
    m_bytes += m_reply->read(m_limits.bytes + 1 - m_bytes.size());
    if (m_bytes.size() > m_limits.bytes)
        fail(u"图片太大，没有加载。"_s);
}

void ImageDownload::fail(const QString &sentence) {
    QNetworkReply *reply = std::exchange(m_reply, nullptr);
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
    m_bytes.clear();
    Q_EMIT failed(sentence);
}

void ImageDownload::decode() {
    std::exchange(m_reply, nullptr)->deleteLater();
    auto promise = std::make_shared<QPromise<QImage>>();
    promise->start();
    promise->future().then(this, [this](const QImage &image) {
        if (image.isNull())
            Q_EMIT failed(u"这不是能显示的图片。"_s);
        else
            Q_EMIT done(image);
    });
    QThreadPool::globalInstance()->start([promise, bytes = std::exchange(m_bytes, {}), limits = m_limits] {
        promise->addResult(decoded(bytes, limits));
        promise->finish();
    });
}

} // namespace lmp
