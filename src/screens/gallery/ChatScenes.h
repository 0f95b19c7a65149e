#pragma once

#include "screens/gallery/GalleryScene.h"

namespace lmp {

/// The twin chat: what is said, what became of it, and what is asked about it.
class ChatScenes {
public:
    static QList<GalleryScene> all();

private:
    static QList<GalleryScene> texts();
    static QList<GalleryScene> turns();
    static QList<GalleryScene> states();
    static QList<GalleryScene> drafts();
    static QList<GalleryScene> ways();
    static QList<GalleryScene> finding();
    static QList<GalleryScene> speaking();
};

} // namespace lmp
