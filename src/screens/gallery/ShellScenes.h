#pragma once

#include "screens/gallery/GalleryScene.h"

namespace lmp {

/// The signed-in window: its tabs, its list, the settings and the questions it asks.
class ShellScenes {
public:
    static QList<GalleryScene> all();

private:
    static QList<GalleryScene> tabs();
    static QList<GalleryScene> lists();
    static QList<GalleryScene> questions();
};

} // namespace lmp
