#include "RemoteImage.h"

#include <QQuickWindow>
#include <QSGImageNode>

namespace lmp {

namespace {

QUrl urlOf(const QString &address) {
    return QUrl(address, QUrl::StrictMode);
}

} // namespace

RemoteImage::RemoteImage(QQuickItem *parent)
    : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

bool RemoteImage::loadable() const {
    const QUrl url = urlOf(m_address);
    return url.isValid() && url.scheme() == ImageDownload::Limits().scheme && !url.host().isEmpty() &&
           url.userInfo().isEmpty();
}

void RemoteImage::load() {
    if (m_status == Loading || m_status == Ready)
        return;
    m_download = std::make_unique<ImageDownload>();
    connect(m_download.get(), &ImageDownload::done, this, [this](const QImage &image) {
        m_image = image;
        m_uploaded = false;
        setImplicitSize(image.width(), image.height());
        end(Ready, QString());
    });
    connect(m_download.get(), &ImageDownload::failed, this, [this](const QString &sentence) { end(Failed, sentence); });
    m_status = Loading;
    Q_EMIT statusChanged();
    m_download->start(urlOf(m_address));
}

void RemoteImage::end(Status status, const QString &errorText) {
    m_download.release()->deleteLater();
    m_status = status;
    m_errorText = errorText;
    update();
    Q_EMIT statusChanged();
}

QSGNode *RemoteImage::updatePaintNode(QSGNode *node, UpdatePaintNodeData *) {
    if (m_image.isNull() || width() <= 0 || height() <= 0) {
        delete node;
        return nullptr;
    }
    auto *image = static_cast<QSGImageNode *>(node);
    if (!image) {
        image = window()->createImageNode();
        image->setOwnsTexture(true);
        image->setFiltering(QSGTexture::Linear);
        m_uploaded = false;
    }
    if (!std::exchange(m_uploaded, true))
        image->setTexture(window()->createTextureFromImage(m_image));
    image->setRect(boundingRect());
    return image;
}

} // namespace lmp
