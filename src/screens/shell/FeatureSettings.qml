import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// How well each feature works here, as the service says whenever somebody looks.
SettingsPart {
    id: root

    required property CapabilityStore capabilities

    function follow(): void {
        if (root.visible)
            root.capabilities.ask();
    }

    title: "功能"

    Component.onCompleted: root.follow()
    onVisibleChanged: root.follow()

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

        LMPButton {
            busy: root.capabilities.asking
            iconName: "retry"
            text: "再读一次"
            visible: features.count === 0
            onClicked: root.capabilities.ask()
        }
    }

    CapabilityList {
        id: features

        store: root.capabilities
    }
}
