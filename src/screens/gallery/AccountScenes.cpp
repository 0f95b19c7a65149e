#include "screens/gallery/AccountScenes.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

void launch(GalleryStage &stage) {
    stage.show(u"Account/LaunchView"_s, {});
}

} // namespace

QList<GalleryScene> AccountScenes::all() {
    return {{u"launch"_s, launch}};
}

} // namespace lmp
