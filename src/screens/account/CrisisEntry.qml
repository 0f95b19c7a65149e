import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// The way to the crisis page, to be placed on any screen.
LMPRow {
    id: root

    required property CrisisResourcesModel resources

    Accessible.role: Accessible.Button
    iconName: "care"
    subtitle: root.resources.entrySubtitle
    title: root.resources.entry
    twoLine: true
}
