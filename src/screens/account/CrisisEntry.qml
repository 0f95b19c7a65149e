import QtQuick
import Lumenpair.Kit

/// The way to the crisis page, to be placed on any screen.
FocusScope {
    id: root

    required property CrisisResourcesModel resources

    signal clicked()
}
