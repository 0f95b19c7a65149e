import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// Asks what was wrong with a reply. Nothing is sent before a reason is chosen.
LMPSheet {
    id: root

    required property ChatModel chat
    readonly property string messageId: root.chat.deeds.reasonsOpenFor
    property int chosen: -1

    function prepare(index: int, choice: LMPRadio): void {
        choice.clicked.connect(() => root.chosen = index);
    }
    function start(): void {
        root.chosen = -1;
        for (let index = 0; index < choices.count; ++index)
            (choices.itemAt(index) as LMPRadio).checked = false;
        root.open();
    }

    primaryEnabled: root.chosen >= 0
    primaryText: "发送反馈"
    title: "哪里不太对？"

    onAccepted: root.chat.deeds.dislike(root.messageId, root.chat.deeds.feedbackReasons[root.chosen])
    onClosed: root.chat.deeds.closeReasons()
    onMessageIdChanged: {
        if (root.messageId !== "")
            root.start();
        else
            root.close();
    }

    Repeater {
        id: choices

        model: root.chat.deeds.feedbackReasonTexts

        delegate: LMPRadio {
            required property string modelData

            text: modelData
            width: parent.width
        }

        onItemAdded: (index, item) => root.prepare(index, item as LMPRadio)
    }
}
