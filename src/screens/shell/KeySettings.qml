import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// Every key of the window.
SettingsPart {
    id: root

    required property AppCommands commands

    title: "快捷键"

    LMPCard {
        accessibleName: root.title
        spacing: Theme.dp(4)
        width: parent.width

        Repeater {
            model: root.commands

            delegate: Item {
                id: line

                required property string keysText
                required property string title

                Accessible.name: line.title + "，" + line.keysText
                Accessible.role: Accessible.StaticText
                height: Math.max(name.height, keys.height)
                visible: line.keysText !== ""
                width: parent ? parent.width : 0

                LMPText {
                    id: name

                    Accessible.ignored: true
                    text: line.title
                    width: keys.x - Theme.dp(12)
                }

                LMPText {
                    id: keys

                    Accessible.ignored: true
                    color: Theme.text2
                    kind: LMPText.Mono
                    text: line.keysText
                    wrapMode: Text.NoWrap
                    x: parent.width - width
                }
            }
        }
    }
}
