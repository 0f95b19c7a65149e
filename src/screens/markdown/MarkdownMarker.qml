import QtQuick
import Lumenpair.Kit
import Lumenpair.Markdown

/// The bullet, number or task box of a list item. A task box tells, it cannot be changed.
Item {
    id: root

    required property MarkdownBlockItem block
    readonly property bool task: root.block.task !== MarkdownBlockModel.NoTask
    readonly property bool done: root.block.task === MarkdownBlockModel.DoneTask

    Accessible.checked: root.done
    Accessible.ignored: !root.task
    Accessible.name: root.done ? "已完成" : "未完成"
    Accessible.readOnly: true
    Accessible.role: Accessible.CheckBox
    height: Theme.dp(25)
    width: root.task ? Theme.dp(14) : label.implicitWidth
    x: Theme.dp(root.block.indent) - width - Theme.dp(8)
    y: Theme.dp(root.block.space) + root.block.view.drop

    LMPText {
        id: label

        kind: LMPText.Chat
        text: root.block.marker
        visible: !root.task
        wrapMode: Text.NoWrap
    }

    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        border.color: root.done ? Theme.accent : Theme.borderStrong
        border.width: 1
        color: root.done ? Theme.accent : "transparent"
        height: width
        radius: Theme.dp(3)
        visible: root.task
        width: Theme.dp(14)
        y: Math.round((root.block.view.metrics.height - height) / 2)

        LMPIcon {
            anchors.centerIn: parent
            color: Theme.onAccent
            name: "check"
            size: 12
            visible: root.done
        }
    }
}
