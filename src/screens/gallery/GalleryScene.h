#pragma once

#include "screens/gallery/GalleryStage.h"

namespace lmp {

/// One picture of the gallery: a screen in one state.
struct GalleryScene {
    QString name; ///< also the picture's
    std::function<void(GalleryStage &)> set;
    QSize size = {1280, 800};
};

} // namespace lmp
