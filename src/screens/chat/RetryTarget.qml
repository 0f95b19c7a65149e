import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// Says over the input that sending tries a failed message again, and lets go of it.
Item {
    id: root

    required property ChatModel chat

    height: root.visible ? Math.max(words.height, leave.height) : 0
    visible: root.chat.retryTarget !== ""

    LMPText {
        id: words

        anchors.verticalCenter: parent.verticalCenter
        color: Theme.text2
        kind: LMPText.Caption
        text: root.chat.retryTargetText
        width: parent.width - leave.width - Theme.space8
        x: Theme.space4
    }
    LMPButton {
        id: leave

        anchors.right: parent.right
        kind: LMPButton.Link
        text: "改发新消息"

        onClicked: root.chat.clearRetryTarget()
    }
}
