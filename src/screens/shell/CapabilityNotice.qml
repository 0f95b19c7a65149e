import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// What the service says of one feature; nothing where it says nothing.
Item {
    id: root

    required property CapabilityNote feature
    readonly property string levelText: root.feature.level === CapabilityNote.Full ? "可用" : root.feature.level === CapabilityNote.Degraded ? "部分可用" : "不可用"
    readonly property string text: [root.feature.label, root.levelText, root.feature.note].filter(part => part !== "").join(" · ")

    Accessible.ignored: !root.visible
    Accessible.name: root.text
    Accessible.role: Accessible.StaticText
    implicitHeight: visible ? words.height : 0
    visible: root.feature.known

    LMPIcon {
        id: icon

        color: Theme.text3
        name: "info"
        size: 16
        y: Math.round((words.lineHeight - height) / 2)
    }

    LMPText {
        id: words

        Accessible.ignored: true
        color: Theme.text2
        kind: LMPText.Caption
        text: root.text
        width: parent.width - x
        x: icon.width + Theme.dp(8)
    }
}
