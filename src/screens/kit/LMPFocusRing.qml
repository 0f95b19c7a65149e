import QtQuick

/// The ring around what has the keyboard: 2 px, at 2 px from the control, or inside it where there is no room around.
/// `shown` is the control's visualFocus, so that a click draws none.
Rectangle {
    id: root

    property bool inside: false
    property bool shown: false
    /// The radius of the control inside.
    property real around: Theme.radiusControl

    anchors.fill: parent
    anchors.margins: root.inside ? 0 : -4
    border.color: Theme.focus
    border.width: 2
    color: "transparent"
    radius: root.inside ? root.around : root.around + 4
    visible: root.shown
}
