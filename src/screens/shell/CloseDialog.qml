import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// A window would close, and what was typed in it is not saved.
LMPDialog {
    id: root

    required property WindowScene scene

    buttons: ["重试保存并关闭", "返回窗口"]
    escapeIndex: 1
    text: "这个窗口里的输入暂未保存，窗口仍保持打开。请重试保存后再关闭。"
    title: "输入尚未保存"
    z: LMPModal.Leaving

    Component.onCompleted: root.open()
    onChosen: index => {
        if (index === 0)
            root.scene.saveAndClose();
        else
            root.scene.questions.stayOpen();
    }
}
