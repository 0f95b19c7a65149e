import QtQuick
import Lumenpair.Chat
import Lumenpair.Markdown

/// What the twin said: the full column, and under it what it drew on, what became of it and what can be done with it.
MessageFrame {
    id: root

    gap: root.row.grouped ? 8 : 20

    MarkdownView {
        blocks: root.row.chat.messages.blocksFor(root.row.messageId) as MarkdownBlockModel
        keepsPlace: false
        maximumWidth: root.width

        onCopyRequested: text => root.row.chat.deeds.copyText(text)
        onLinkActivated: link => root.row.chat.deeds.openLink(link)
        onMeasuredAbove: by => root.row.column.measuredAbove(root.row, by)
        onMoveAsked: by => root.row.column.moveAsked(by)
    }
    LazyPart {
        part: root.row.column.error
        subject: root.row
        wanted: root.row.errorText !== ""
    }
    MessageFoot {
        attended: root.attended
        rested: root.rested
        row: root.row
        width: root.width
    }
}
