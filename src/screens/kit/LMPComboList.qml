import QtQuick
import QtQuick.Templates as T

/// The open list of an LMPComboBox. Its current line is the one the keyboard or the pointer is at; `chosen` is the one
/// that holds.
ListView {
    id: root

    property int chosen: -1

    T.ScrollBar.vertical: LMPScrollBar {
    }
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    implicitHeight: contentHeight
}
