import QtQuick
import Lumenpair.Kit
import Lumenpair.Markdown

/// What the twin said: the full column, and under it what it drew on, what became of it and what can be done with it.
MessageFrame {
    id: root

    MarkdownView {
        blocks: root.row.chat.messages.blocksFor(root.row.messageId) as MarkdownBlockModel
        maximumWidth: root.availableWidth
        width: root.availableWidth

        onCopyRequested: text => root.row.chat.copyText(text)
        onLinkActivated: link => root.row.chat.openLink(link)
    }
    LMPChip {
        activeFocusOnTab: root.row.focused
        clickable: true
        iconName: "memory"
        text: root.row.usedText
        visible: root.row.usedCount > 0

        onClicked: root.row.chat.openUsed(root.row.messageId)
    }
    MessageState {
        maximumWidth: root.availableWidth
        row: root.row
    }
    TwinMessageActions {
        reachable: root.row.focused
        row: root.row
        shown: root.attended || root.row.last
        width: root.availableWidth
    }
}
