import QtQuick
// The module it is in, by name: a file finds its folder's QML types by itself, but not the C++ ones.
import Lumenpair.Kit

/// A line icon by its name (icons/NAME.svg), in one colour. `size` is of the design: it grows with the scale.
/// Decoration: what it says is said by the name of the control around it.
LMPIconItem {
    id: root

    property real size: 20

    color: Theme.text2
    implicitHeight: Theme.dp(root.size)
    implicitWidth: Theme.dp(root.size)
}
