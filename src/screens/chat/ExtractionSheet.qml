import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// Has the chat read for memories, after saying what that costs. Goes as soon as something was found.
LMPSheet {
    id: root

    required property ChatModel chat
    readonly property ExtractionModel extraction: root.chat.extraction
    readonly property bool found: root.extraction.open

    primaryBusy: root.extraction.extracting
    primaryText: root.extraction.extracting ? "正在整理" : "整理"
    secondaryText: "关闭"
    title: "整理这段对话的记忆"

    onAboutToShow: root.extraction.clearMessage()
    onAccepted: root.extraction.extract()

    onFoundChanged: {
        if (root.found)
            root.close();
    }

    LMPText {
        text: root.extraction.note
        width: parent.width
    }

    LMPBanner {
        text: root.extraction.message
        visible: root.extraction.message !== ""
    }
}
