import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// The edge of the sidebar, to be dragged, or moved with the arrows once Tab has come to it. A screen reader has it as a
/// slider: it reads and sets `value`.
Item {
    id: root

    required property WindowLayout layout
    property int before: 0
    readonly property int maximumValue: root.layout.widestSidebar
    readonly property int minimumValue: root.layout.narrowestSidebar
    readonly property int stepSize: 8
    property int value

    function move(by: int): void {
        root.layout.sidebarWidth += by;
    }

    Accessible.description: "用左右方向键调整宽度"
    Accessible.name: "侧栏宽度"
    Accessible.role: Accessible.Slider
    Keys.onLeftPressed: root.move(-root.stepSize)
    Keys.onRightPressed: root.move(root.stepSize)
    activeFocusOnTab: true
    width: Theme.dp(8)

    Accessible.onDecreaseAction: root.move(-root.stepSize)
    Accessible.onIncreaseAction: root.move(root.stepSize)
    onValueChanged: root.layout.sidebarWidth = root.value

    Binding on value {
        value: root.layout.sidebarWidth
    }

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
