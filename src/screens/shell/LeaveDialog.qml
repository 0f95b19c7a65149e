import QtQuick
import Lumenpair.Kit

/// Another conversation would take the place of one that nobody keeps.
LMPDialog {
    id: root

    signal answered(bool leave)

    buttons: ["离开", "留在这里"]
    dangerIndex: 0
    escapeIndex: 1
    text: "这段对话的内容不会留下。要留的话，请先复制。"
    title: "离开无痕对话？"

    Component.onCompleted: root.open()
    onChosen: index => root.answered(index === 0)
}
