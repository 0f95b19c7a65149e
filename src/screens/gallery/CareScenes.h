#pragma once

#include "screens/gallery/GalleryScene.h"

namespace lmp {

/// The safety cards over any screen, and the crisis page without an account.
class CareScenes {
public:
    static QList<GalleryScene> all();
};

} // namespace lmp
