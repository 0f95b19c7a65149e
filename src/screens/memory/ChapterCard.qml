import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// One chapter: what really happened, how it is told, and what it rests on.
MemoryCard {
    id: root

    required property string chapterId
    required property string heading
    required property string date
    required property string real
    required property string story
    required property string evidence
    required property bool pending
    required property bool busy

    accessibleName: root.heading + (root.pending ? "，等你决定" : "")

    LMPText {
        kind: LMPText.H3
        text: root.heading
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        kind: LMPText.Caption
        text: root.date
        visible: text !== ""
        width: parent.width
    }

    LMPText {
        text: root.story
        visible: text !== ""
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        text: "实际发生的：" + root.real
        visible: root.real !== ""
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        kind: LMPText.Caption
        text: "依据：\n" + root.evidence
        visible: root.evidence !== ""
        width: parent.width
    }

    Row {
        anchors.right: parent.right
        spacing: Theme.space8
        visible: root.pending

        LMPSpinner {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.busy
        }

        LMPButton {
            enabled: !root.busy
            focusPolicy: root.buttonPolicy
            text: "不要这一章"
            onClicked: root.list.ledger.resolveChapter(root.chapterId, false)
        }

        LMPButton {
            enabled: !root.busy
            focusPolicy: root.buttonPolicy
            kind: LMPButton.Primary
            text: "收下"
            onClicked: root.list.ledger.resolveChapter(root.chapterId, true)
        }
    }
}
