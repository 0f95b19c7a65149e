import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// How well each feature works here, as the service says.
SettingsPart {
    id: root

    required property CapabilityStore capabilities

    title: "功能"

    LMPCard {
        accessibleName: root.title
        width: parent.width

        LMPText {
            color: Theme.text2
            kind: LMPText.Caption
            text: "这是服务那边的状态。社交、市场和工坊的页面，这个版本还没有做好。"
            visible: features.count > 0
            width: parent.width
        }

        Repeater {
            model: features

            delegate: CapabilityNotice {
                width: parent ? parent.width : 0
            }
        }

        LMPText {
            color: Theme.text2
            text: "还没有从服务读到功能清单。"
            visible: features.count === 0
            width: parent.width
        }
    }

    CapabilityList {
        id: features

        store: root.capabilities
    }
}
