import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// A tab whose features this version does not have: it says so, and what the service says of each.
TabPage {
    id: root

    readonly property list<string> titles: ["", "社交", "市场", "工坊"]
    readonly property list<string> sentences: [
        "",
        "消息、联系人、动态和语音房会放在这里，这个版本还没有做好。",
        "作品、悬赏和钱包会放在这里，这个版本还没有做好。",
        "编程助手的工作台会放在这里，这个版本还没有做好。"
    ]
    readonly property list<string> icons: ["", "social", "market", "studio"]
    readonly property list<string> places: ["", "social", "market", "studio"]

    LMPPage {
        anchors.fill: parent
        focus: true
        leading: SidebarButton {
            visible: root.frame.sidebarHidden
            onClicked: root.frame.sidebarRequested()
        }
        title: root.titles[root.tab]

        Column {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Theme.dp(24)
            width: Math.min(parent.width - Theme.dp(48), Theme.dp(480))
            y: Math.max(Theme.dp(24), Math.round((parent.height - height) * 0.4))

            LMPEmptyState {
                anchors.horizontalCenter: parent.horizontalCenter
                iconName: root.icons[root.tab]
                text: root.sentences[root.tab]
            }

            Column {
                spacing: Theme.dp(8)
                width: parent.width

                LMPText {
                    color: Theme.text2
                    kind: LMPText.Label
                    text: "服务那边的状态"
                    visible: features.count > 0
                    width: parent.width
                }

                Repeater {
                    model: CapabilityList {
                        id: features

                        also: root.tab === WindowNavigation.Social ? ["social", "voice", "posts"] : []
                        nav: root.places[root.tab]
                        store: root.scene.capabilities
                    }

                    delegate: CapabilityNotice {
                        width: parent ? parent.width : 0
                    }
                }
            }
        }
    }
}
