import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit

/// The conversations under the tab "now": find one, open one, begin one.
FocusScope {
    id: root

    required property ConversationListModel conversations

    signal opened(string id)
    signal newRequested

    /// Puts the caret into the field that finds.
    function focusFind() {
        find.forceActiveFocus();
    }
    function open(id: string) {
        root.conversations.select(id);
        root.opened(id);
    }

    Column {
        id: head

        spacing: Theme.dp(8)
        width: parent.width - 2 * Theme.dp(8)
        x: Theme.dp(8)

        LMPButton {
            iconName: "plus"
            kind: LMPButton.Secondary
            text: "新对话"
            width: parent.width

            onClicked: root.newRequested()
        }
        LMPTextField {
            id: find

            placeholderText: "查找对话"
            visible: !root.conversations.empty
            width: parent.width

            Keys.onDownPressed: list.forceActiveFocus()
            onAccepted: {
                if (list.count > 0)
                    root.open((list.itemAtIndex(0) as ConversationListRow).conversationId);
            }
            onTextEdited: root.conversations.find(find.text)
        }
        LMPBanner {
            actionText: "再试一次"
            text: root.conversations.errorText
            tone: LMPBanner.Warning
            visible: root.conversations.errorText.length > 0
            width: parent.width

            onAction: root.conversations.refresh()
        }
        LMPText {
            color: Theme.text3
            kind: LMPText.Caption
            text: root.conversations.notice
            visible: text.length > 0
            width: parent.width
        }
    }
    ListView {
        id: list

        Accessible.name: "对话"
        Accessible.role: Accessible.List
        activeFocusOnTab: true
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: head.bottom
        anchors.topMargin: Theme.dp(8)
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        currentIndex: -1
        highlightFollowsCurrentItem: true
        highlightMoveDuration: 0
        keyNavigationEnabled: true
        model: root.conversations

        T.ScrollBar.vertical: LMPScrollBar {}
        delegate: ConversationListRow {
            width: ListView.view.width

            onClicked: {
                list.currentIndex = index;
                root.open(conversationId);
            }
        }

        Keys.onPressed: event => {
            const row = list.currentItem as ConversationListRow;
            if (row && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter || event.key === Qt.Key_Space)) {
                root.open(row.conversationId);
                event.accepted = true;
            }
        }
        onActiveFocusChanged: {
            if (list.activeFocus && list.currentIndex < 0 && list.count > 0)
                list.currentIndex = Math.max(0, root.conversations.rowOf(root.conversations.selectedId));
        }
    }
    LMPText {
        anchors.left: head.left
        anchors.right: head.right
        anchors.top: list.top
        color: Theme.text3
        horizontalAlignment: Text.AlignHCenter
        text: root.conversations.noneFound ? "没有找到这样的对话。" : root.conversations.empty ? "还没有对话，从“新对话”开始。" : "正在读取对话…"
        topPadding: Theme.dp(24)
        visible: list.count === 0 && (root.conversations.noneFound || root.conversations.empty || root.conversations.loading)
    }
}
