import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// How this chat is held: what each way means is said beside its switch.
LMPSheet {
    id: root

    required property ChatModel chat

    /// An incognito chat is one of its own: the open one is never turned into one, nor back.
    signal incognitoWanted(bool incognito)

    primaryText: "完成"
    secondaryText: ""
    title: "对话方式"

    onAccepted: root.close()

    LMPSwitch {
        id: cheaper

        description: "回答会短一些，一般也花得少一些。从下一条消息起生效。"
        text: "省着聊"
        width: parent.width

        Binding on checked {
            value: root.chat.cheaperMode
        }

        onToggled: root.chat.cheaperMode = cheaper.checked
    }
    LMPSwitch {
        id: incognito

        description: root.chat.incognito ? "关掉会离开这段无痕对话，开始一段普通的新对话。" : "打开会开始一段新的无痕对话：不写历史、不记记忆。现在这段对话照常保留。"
        text: "无痕对话"
        width: parent.width

        Binding on checked {
            value: root.chat.incognito
        }

        onToggled: {
            const wanted = incognito.checked;
            // It shows what is, and that is not decided here.
            incognito.checked = root.chat.incognito;
            root.incognitoWanted(wanted);
        }
    }
}
