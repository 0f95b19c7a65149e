import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// What was asked for would put away a conversation that nobody keeps: another takes its place, its window closes, or
/// the program ends. Or a link leads away from a reply that is on its way; whoever reads it need not have asked for that.
LMPDialog {
    id: root

    required property WindowScene scene
    readonly property int leaving: root.scene.questions.leaving

    buttons: [["离开", "关闭", "退出", "停下并打开"][root.leaving], "留在这里"]
    dangerIndex: 0
    escapeIndex: 1
    text: ["这段对话的内容不会留下。要留的话，请先复制。", "关闭后，这段无痕对话将无法找回。要留的话，请先复制。", "退出后，这段无痕对话将无法找回。要留的话，请先复制。", "链接要打开另一段对话。现在打开，这里的回答会停止，收到的部分留在这里；这一轮是否扣费，请看账单。"][root.leaving]
    title: ["离开无痕对话？", "关闭窗口？", "退出 Lumenpair？", "停下正在写的回答？"][root.leaving]
    unasked: root.scene.questions.leaveUnasked
    z: root.leaving === WindowQuestions.Window || root.leaving === WindowQuestions.Program ? LMPModal.Leaving : LMPModal.Usual

    Component.onCompleted: root.open()
    onChosen: index => {
        root.scene.questions.answerLeave(index === 0);
    }
}
