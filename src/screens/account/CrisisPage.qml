import QtQuick
import Lumenpair.Kit

/// The crisis page: numbers of a region for anybody, signed in or not.
FocusScope {
    id: root

    required property CrisisResourcesModel resources

    signal closed()
}
