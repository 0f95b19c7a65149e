import QtQuick
import Lumenpair.Kit

/// The safety cards and the crisis page, over whatever the window shows, sheets included. One for each window.
Item {
    id: root

    required property SafetyModel safety
    required property CrisisResourcesModel resources

    /// Shows the crisis page over everything; closing it leaves the window as it was.
    function openCrisisPage() {
    }
}
