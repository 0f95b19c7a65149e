import Lumenpair.Chat
import Lumenpair.Kit

/// Asked before what is only here is given up for the copy that the service has.
LMPDialog {
    id: root

    required property ChatModel chat

    buttons: ["打开服务上的版本", "先不"]
    dangerIndex: 0
    escapeIndex: 1
    text: "本机还没有同步的内容会被放弃，找不回来。要留的话，请先复制。"
    title: "改用服务上的版本？"

    onChosen: index => {
        if (index === 0)
            root.chat.openServiceCopy();
    }
}
