import Lumenpair.Chat
import Lumenpair.Kit

/// Asked before a conversation that nobody keeps gives way to one of the other kind.
LMPDialog {
    id: root

    required property ChatModel chat

    signal left

    buttons: ["离开", "留在这里"]
    dangerIndex: 0
    escapeIndex: 1
    text: "这段对话的内容不会留下。要留的话，请先复制。"
    title: "离开无痕对话？"

    onChosen: index => {
        if (index === 0)
            root.left();
    }
}
