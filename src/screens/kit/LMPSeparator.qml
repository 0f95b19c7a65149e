import QtQuick

/// A line of 1 px between things that belong apart.
Rectangle {
    id: root

    property bool vertical: false

    Accessible.ignored: true
    color: Theme.border
    implicitHeight: root.vertical ? Theme.space16 : 1
    implicitWidth: root.vertical ? 1 : Theme.space16
    width: root.vertical ? 1 : (parent ? parent.width : implicitWidth)
}
