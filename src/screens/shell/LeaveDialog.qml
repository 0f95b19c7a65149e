import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// What was asked for would put away a conversation that nobody keeps: another takes its place, its window closes, or
/// the program ends.
LMPDialog {
    id: root

    required property WindowScene scene
    readonly property int leaving: root.scene.questions.leaving

    buttons: [["离开", "关闭", "退出"][root.leaving], "留在这里"]
    dangerIndex: 0
    escapeIndex: 1
    text: ["这段对话的内容不会留下。", "关闭后，这段无痕对话将无法找回。", "退出后，这段无痕对话将无法找回。"][root.leaving] + "要留的话，请先复制。"
    title: ["离开无痕对话？", "关闭窗口？", "退出 Lumenpair？"][root.leaving]

    Component.onCompleted: root.open()
    onChosen: index => {
        root.scene.questions.answerLeave(index === 0);
    }
}
