import QtQuick
import Lumenpair.Kit

/// What is shown until it is known who is there. Nothing at first, so that a fast start does not flash.
FocusScope {
    id: root

    required property SessionModel session
    required property CrisisResourcesModel resources
    /// How long it stays blank, in milliseconds.
    property int quietFor: 500

    signal crisisRequested()
}
