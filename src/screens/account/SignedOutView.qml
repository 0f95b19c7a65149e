import QtQuick
import Lumenpair.Kit

/// Signing in, and the guest trial beside it.
FocusScope {
    id: root

    required property SessionModel session
    required property CrisisResourcesModel resources

    signal crisisRequested()
}
