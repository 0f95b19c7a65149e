import QtQuick
import Lumenpair.Kit

/// A conversation in which nothing was said: one sentence, and beginnings that go into the input box to be finished there.
Item {
    id: root

    signal chosen(string text)

    readonly property list<string> starters: ["今天有件事，想和你说说：", "帮我理一理这周要做的事：", "你都记得我些什么？"]

    Column {
        anchors.centerIn: parent
        spacing: Theme.dp(16)
        width: Math.min(Theme.dp(480), root.width - 2 * Theme.dp(24))

        LMPText {
            horizontalAlignment: Text.AlignHCenter
            kind: LMPText.H2
            text: "和你的分身聊点什么吧。"
            width: parent.width
        }
        LMPText {
            color: Theme.text2
            horizontalAlignment: Text.AlignHCenter
            text: "也可以从这里开头，放进输入框后由你改、由你发："
            width: parent.width
        }
        Flow {
            spacing: Theme.dp(8)
            width: parent.width

            Repeater {
                model: root.starters

                delegate: LMPButton {
                    id: starter

                    required property string modelData

                    kind: LMPButton.Secondary
                    text: starter.modelData

                    onClicked: root.chosen(starter.modelData)
                }
            }
        }
    }
}
