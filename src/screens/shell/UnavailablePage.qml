import QtQuick
import Lumenpair.Kit

/// Where a link leads to that there is no screen for.
FocusScope {
    id: root

    signal closed

    Keys.onEscapePressed: root.closed()

    onActiveFocusChanged: {
        if (root.activeFocus)
            empty.focusAction();
    }

    LMPPage {
        anchors.fill: parent
        focus: true
        title: "打不开这一项"

        LMPEmptyState {
            id: empty

            actionText: "回到刚才的页面"
            anchors.centerIn: parent
            iconName: "link"
            text: "这个链接指向的内容，这个版本没有能显示它的页面。什么都没有改动。"
            onAction: root.closed()
        }
    }
}
