import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// The conversations under the tab "now": find one, open one, begin one.
FocusScope {
    id: root

    required property ConversationListModel conversations

    signal opened(id: string)
    signal newRequested

    /// Puts the caret into the field that finds.
    function focusFind(): void {
        find.forceActiveFocus();
    }
    function open(id: string): void {
        root.conversations.select(id);
        root.opened(id);
    }
    /// What stands where there are no rows, or nothing.
    function emptyText(): string {
        if (root.conversations.noneFound)
            return "没有找到这样的对话。";
        if (root.conversations.empty)
            return "还没有对话。";
        return root.conversations.loading ? "正在读取对话…" : "";
    }

    Column {
        id: head

        spacing: Theme.space8
        width: parent.width - 2 * x
        x: Theme.space8

        LMPButton {
            iconName: "plus"
            text: "新对话"
            width: parent.width

            onClicked: root.newRequested()
        }
        LMPTextField {
            id: find

            iconName: "search"
            placeholderText: "查找对话"
            visible: !root.conversations.empty
            width: parent.width

            Keys.onDownPressed: list.go(0)
            Keys.onEscapePressed: event => {
                event.accepted = find.text !== "" && !find.inputMethodComposing;
                if (event.accepted)
                    root.conversations.find("");
            }
            onAccepted: list.openFirst()
            onTextEdited: root.conversations.find(find.text)

            Binding on text {
                value: root.conversations.findText
            }
        }
        LMPBanner {
            actionText: "刷新近期项目"
            text: root.conversations.errorText
            tone: LMPBanner.Warning
            visible: root.conversations.errorText !== ""

            onAction: root.conversations.refresh()
        }
        LMPText {
            color: Theme.text2
            kind: LMPText.Caption
            text: root.conversations.notice
            visible: root.conversations.notice !== ""
            width: parent.width
        }
    }
    ConversationListView {
        id: list

        anchors.bottom: parent.bottom
        anchors.left: head.left
        anchors.right: parent.right
        anchors.top: head.bottom
        anchors.topMargin: Theme.space8
        model: root.conversations

        delegate: ConversationListRow {}

        onChosen: conversationId => root.open(conversationId)
    }
    LMPText {
        anchors.left: head.left
        anchors.right: head.right
        anchors.top: list.top
        anchors.topMargin: Theme.space16
        color: Theme.text2
        horizontalAlignment: Text.AlignHCenter
        text: root.emptyText()
        visible: list.count === 0 && text !== ""
    }
}
