#pragma once

#include "screens/gallery/GalleryScene.h"

#include <QList>

namespace lmp {

/// The ledger of memories: its pages, its sheets, and what goes wrong in them. Free of state.
class MemoryScenes {
public:
    static QList<GalleryScene> all();

private:
    static QList<GalleryScene> ledger();
    static QList<GalleryScene> sheets();
    static QList<GalleryScene> imports();
    static QList<GalleryScene> extraction();
};

} // namespace lmp
