#pragma once

#include "screens/gallery/GalleryScene.h"

namespace lmp {

/// The screens before somebody is signed in, those that come once after it, and what is done about an account.
class AccountScenes {
public:
    static QList<GalleryScene> all();

private:
    static QList<GalleryScene> launching();
    static QList<GalleryScene> signingIn();
    static QList<GalleryScene> trying();
    static QList<GalleryScene> firstTime();
    static QList<GalleryScene> signedIn();
};

} // namespace lmp
