import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// The edge of the sidebar, to be dragged, or moved with the arrows once Tab has come to it.
Item {
    id: root

    required property WindowLayout layout
    property int before: 0

    Accessible.description: "用左右方向键调整宽度"
    Accessible.name: "侧栏宽度"
    Accessible.role: Accessible.Slider
    Keys.onLeftPressed: root.layout.sidebarWidth -= 8
    Keys.onRightPressed: root.layout.sidebarWidth += 8
    activeFocusOnTab: true
    width: Theme.dp(8)

    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        color: root.activeFocus || drag.active || hover.hovered ? Theme.accent : "transparent"
        height: parent.height
        width: 2
    }

    HoverHandler {
        id: hover

        cursorShape: Qt.SplitHCursor
    }

    DragHandler {
        id: drag

        dragThreshold: 0
        target: null
        yAxis.enabled: false

        onActiveChanged: {
            if (drag.active)
                root.before = root.layout.sidebarWidth;
        }
        onTranslationChanged: {
            if (drag.active)
                root.layout.sidebarWidth = root.before + Math.round(drag.translation.x / Theme.factor);
        }
    }
}
