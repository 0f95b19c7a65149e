import QtQuick
import Lumenpair.Kit

/// A whole-window screen with one narrow column in its middle, which scrolls where the window is too low for it.
FocusScope {
    id: root

    default property alias content: body.data
    property real maximumWidth: 420
    /// About how high the content is: it stands a little above the middle, and stays there when a line is added.
    property real usualHeight: 320
    property alias spacing: body.spacing
    /// Where the content ends as long as it is not scrolled, which it can be where it `overflows`.
    readonly property real contentBottom: scroll.topPadding + body.height
    readonly property bool overflows: root.contentBottom + scroll.bottomPadding > root.height

    /// Scrolls as little as is needed for `item` to be seen.
    function show(item: Item): void {
        if (item.visible)
            scroll.show(item);
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.window
    }

    LMPScrollView {
        id: scroll

        anchors.fill: parent
        bottomPadding: Theme.space24
        horizontalPadding: Theme.space24
        topPadding: Math.max(Theme.space24, Math.round((scroll.height - Theme.dp(root.usualHeight)) * 0.42))

        Column {
            id: body

            anchors.horizontalCenter: parent ? parent.horizontalCenter : undefined
            spacing: Theme.space16
            width: parent ? Math.min(Theme.dp(root.maximumWidth), parent.width) : 0
        }
    }
}
