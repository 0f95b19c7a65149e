import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// Three short steps that say what this is and what it is not.
CenteredPane {
    id: root

    required property CrisisResourcesModel resources
    property int step: 0
    readonly property bool last: root.step === root.steps.length - 1
    readonly property list<string> headings: ["和你的分身说话", "它记得什么，你看得到", "花了多少，存在哪里"]
    readonly property list<string> steps: [
        "分身是一个 AI，会参考你和它说过的话来回答。它会记错，也会说错；重要的事请自己再核实一遍。",
        "一条回复用到了哪些记忆，点开就能看。答得不好，可以在回复下面说一声。",
        "有的回复要花 Pip：花了多少写在回复下面，还剩多少写在对话上面，不知道的写「—」。对话存在服务器上；这台电脑只留草稿、缓存和几项设置，登录信息放在系统钥匙串里（有的话）。"
    ]

    signal crisisRequested
    signal finished

    maximumWidth: 480

    LMPCard {
        accessibleName: heading.text
        padding: Theme.space24
        spacing: Theme.space16
        width: parent.width

        LMPText {
            color: Theme.text3
            kind: LMPText.Caption
            text: (root.step + 1) + " / " + root.steps.length
            width: parent.width
        }

        LMPText {
            id: heading

            Accessible.role: Accessible.Heading
            kind: LMPText.H2
            text: root.headings[root.step]
            width: parent.width
        }

        LMPText {
            height: Math.max(implicitHeight, 4 * lineHeight)
            text: root.steps[root.step]
            width: parent.width
        }

        Item {
            height: actions.height
            width: parent.width

            LMPButton {
                kind: LMPButton.Quiet
                text: "跳过"
                visible: !root.last
                onClicked: root.finished()
            }

            Row {
                id: actions

                anchors.right: parent.right
                spacing: Theme.space8

                LMPButton {
                    text: "上一步"
                    visible: root.step > 0
                    onClicked: root.step -= 1
                }

                LMPButton {
                    focus: true
                    kind: LMPButton.Primary
                    text: root.last ? "开始" : "下一步"
                    onClicked: {
                        if (root.last)
                            root.finished();
                        else
                            root.step += 1;
                    }
                }
            }
        }
    }

    CrisisEntry {
        resources: root.resources
        width: parent.width
        onClicked: root.crisisRequested()
    }
}
