import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// Another conversation would take the place of one that nobody keeps.
LMPDialog {
    id: root

    required property WindowScene scene

    buttons: ["离开", "留在这里"]
    dangerIndex: 0
    escapeIndex: 1
    text: "这段对话的内容不会留下。要留的话，请先复制。"
    title: "离开无痕对话？"

    Component.onCompleted: root.open()
    onChosen: index => {
        root.scene.answerLeave(index === 0);
    }
}
