import QtQuick
import Lumenpair.Kit

/// A round of the guest trial: what the person said, and the twin's answer.
Column {
    id: root

    required property string message
    required property string reply
    required property string stardust

    spacing: Theme.space12

    GuestBubble {
        text: root.message
        width: parent.width
    }

    LMPText {
        Accessible.name: "分身：" + root.reply
        Accessible.role: Accessible.StaticText
        kind: LMPText.Chat
        text: root.reply
        width: parent.width
    }

    LMPText {
        color: Theme.text3
        kind: LMPText.Caption
        text: root.stardust
        visible: root.stardust !== ""
        width: parent.width
    }
}
