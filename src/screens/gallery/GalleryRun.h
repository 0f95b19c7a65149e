#pragma once

#include "screens/gallery/GalleryScene.h"

#include <QElapsedTimer>
#include <QTimer>

#include <optional>

namespace lmp {

/// Draws scenes into a folder, one after another, each in every look, and says what is wrong with them.
///
/// Made by main, UI thread; ends the event loop with 0 when all is well and 1 when it is not. A fault is written to
/// standard error and does not stop the others.
class GalleryRun : public QObject {
    Q_OBJECT
public:
    struct Look {
        QString name;
        bool dark = false;
        qreal scale = 1.0;
    };
    /// The looks that are drawn when none is named.
    static const QList<Look> &everyLook();
    /// The look of a name like "dark-85": light or dark, and a scale from 85 to 160 %. None for any other name.
    static std::optional<Look> lookOf(const QString &name);

    /// @param folder exists
    GalleryRun(QString folder, QList<GalleryScene> scenes, QList<Look> looks);
    ~GalleryRun() override;

    void start();

private:
    void step();
    void beginScene();
    void takePictures();
    void endScene();
    void apply(const Look &look);
    void report(const QString &fault);

    QString m_folder;
    QList<GalleryScene> m_scenes;
    QList<Look> m_looks;
    QQmlEngine m_engine;
    std::unique_ptr<GalleryStage> m_stage;
    QTimer m_timer;
    QElapsedTimer m_since;
    qsizetype m_scene = 0;
    qsizetype m_look = -1; ///< the one being drawn; -1 while the scene is being set up
    QImage m_last;         ///< what the look looked like when it was last looked at
    QStringList m_sceneFaults;
    int m_faults = 0;
};

} // namespace lmp
