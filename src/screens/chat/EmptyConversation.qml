import QtQuick
import Lumenpair.Kit

/// A conversation in which nothing was said: one sentence, and beginnings that go into the input box to be finished there.
Item {
    id: root

    readonly property list<string> starters: ["今天有件事，想和你说说：", "帮我理一理这周要做的事：", "你都记得我些什么？"]

    signal chosen(text: string)

    function prepare(button: LMPButton): void {
        button.clicked.connect(() => root.chosen(button.text));
    }

    // In the middle where there is room, and scrolled where there is not.
    LMPScrollView {
        id: scroll

        anchors.fill: parent
        bottomPadding: Theme.space16
        horizontalPadding: Theme.space24
        topPadding: Math.max(Theme.space16, Math.round((scroll.height - body.height) / 2))

        Column {
            id: body

            anchors.horizontalCenter: parent ? parent.horizontalCenter : undefined
            spacing: Theme.space16
            width: parent ? Math.min(Theme.dp(480), parent.width) : 0

            LMPText {
                horizontalAlignment: Text.AlignHCenter
                kind: LMPText.H2
                text: "和你的分身聊点什么吧。"
                width: parent.width
            }
            LMPText {
                color: Theme.text2
                horizontalAlignment: Text.AlignHCenter
                text: "也可以从这里开头。它只会放进输入框，由你改完再发。"
                width: parent.width
            }
            Column {
                anchors.horizontalCenter: parent.horizontalCenter
                spacing: Theme.space8

                Repeater {
                    model: root.starters

                    delegate: LMPButton {
                        required property string modelData

                        anchors.horizontalCenter: parent.horizontalCenter
                        text: modelData
                        // One stack, not three lengths.
                        width: Math.max(implicitWidth, Theme.dp(224))
                    }

                    onItemAdded: (index, item) => root.prepare(item as LMPButton)
                }
            }
        }
    }
}
