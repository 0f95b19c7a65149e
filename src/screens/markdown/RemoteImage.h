#pragma once

#include "ImageDownload.h"

#include <QQuickItem>

#include <memory>

namespace lmp {

/// An image of a message, drawn once somebody asked for it.
///
/// Lives on the UI thread, owned by MarkdownImage.qml. Until `load` is called nothing is asked of the network; see
/// ImageDownload for what may be loaded and how it fails. As wide as it is given, as high as the image then is.
class RemoteImage : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString address MEMBER m_address NOTIFY addressChanged)
    /// Whether the address may be loaded at all.
    Q_PROPERTY(bool loadable READ loadable NOTIFY addressChanged)
    Q_PROPERTY(Status status READ status NOTIFY statusChanged)
    /// Why it failed.
    Q_PROPERTY(QString errorText READ errorText NOTIFY statusChanged)

public:
    enum Status { NotAsked, Loading, Ready, Failed };
    Q_ENUM(Status)

    explicit RemoteImage(QQuickItem *parent = nullptr);

    Q_INVOKABLE void load();

    [[nodiscard]] bool loadable() const;
    [[nodiscard]] Status status() const { return m_status; }
    [[nodiscard]] QString errorText() const { return m_errorText; }

Q_SIGNALS:
    void addressChanged();
    void statusChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;

private:
    void end(Status status, const QString &errorText);

    QString m_address;
    QString m_errorText;
    Status m_status = NotAsked;
    std::unique_ptr<ImageDownload> m_download;
    QImage m_image;
    bool m_uploaded = false;
};

} // namespace lmp
