import QtQuick
import Lumenpair.Kit

/// The list of the messages found; it says which of its rows was clicked.
ListView {
    id: root

    /// The bar has the margin at the right to itself.
    readonly property real rowWidth: root.width - Theme.dp(10)

    signal taken(int row)
}
