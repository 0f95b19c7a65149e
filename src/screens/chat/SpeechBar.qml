import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// What is being read aloud, as subtitles, and why there is no sound. It never covers a message.
Rectangle {
    id: root

    required property SpeechModel speech

    Accessible.name: root.speech.speaking ? (root.speech.preparing ? "正在准备朗读" : "正在朗读") : "朗读"
    Accessible.role: Accessible.Grouping
    border.color: Theme.border
    border.width: 1
    color: Theme.sunken
    implicitHeight: Math.max(Theme.dp(40), words.height + 2 * Theme.space8)
    radius: Theme.radiusRow

    Column {
        id: words

        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.space2
        width: stop.x - x - Theme.space8
        x: Theme.space12

        LMPText {
            color: Theme.text3
            kind: LMPText.Caption
            text: "正在准备声音……"
            visible: root.speech.preparing
            width: parent.width
        }
        LMPText {
            elide: Text.ElideRight
            kind: LMPText.Body
            maximumLineCount: 6
            text: root.speech.subtitle
            textFormat: Text.PlainText
            visible: text !== ""
            width: parent.width
            wrapMode: Text.Wrap
        }
        LMPText {
            Accessible.role: Accessible.AlertMessage
            color: Theme.warning
            kind: LMPText.Caption
            text: root.speech.note
            visible: text !== ""
            width: parent.width
        }
    }
    LMPIconButton {
        id: stop

        anchors.right: parent.right
        anchors.rightMargin: Theme.space8
        anchors.verticalCenter: parent.verticalCenter
        iconName: root.speech.speaking ? "stop" : "close"
        text: root.speech.speaking ? "停止朗读" : "收起字幕"

        onClicked: root.speech.stop()
    }
}
