import QtQuick
import QtQuick.Templates as T

/// A thin bar that widens under the pointer; there only where something can be scrolled.
T.ScrollBar {
    id: root

    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    minimumSize: root.horizontal ? height / Math.max(1, width) * 2 : width / Math.max(1, height) * 2
    padding: Theme.space2
    visible: root.policy !== T.ScrollBar.AlwaysOff && root.size < 1

    contentItem: Rectangle {
        // Plain to be seen at rest, too: nothing else says that there is more.
        color: root.pressed || root.hovered ? Theme.text3 : Theme.borderStrong
        implicitHeight: Theme.dp(6)
        implicitWidth: Theme.dp(6)
        radius: Theme.dp(3)
    }
}
