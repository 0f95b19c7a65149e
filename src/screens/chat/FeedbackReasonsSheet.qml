import QtQuick
import Lumenpair.Kit

/// Asks what was wrong with a reply. Nothing is sent before a reason is chosen.
LMPSheet {
    id: root

    required property ChatModel chat
    readonly property string messageId: root.chat.reasonsOpenFor
    property string chosen: ""

    primaryEnabled: root.chosen.length > 0
    primaryText: "发送反馈"
    title: "哪里不太对？"

    onAccepted: root.chat.dislike(root.messageId, root.chosen)
    onClosed: root.chat.closeReasons()
    onMessageIdChanged: {
        if (root.messageId.length > 0) {
            root.chosen = "";
            root.open();
        } else {
            root.close();
        }
    }

    Repeater {
        model: root.chat.feedbackReasons

        delegate: LMPRadio {
            id: reason

            required property int index
            required property string modelData

            text: root.chat.feedbackReasonTexts[reason.index]
            width: parent.width

            // A radio button checks itself; the choice is the sheet's all the same.
            Binding on checked {
                value: root.chosen === reason.modelData
            }

            onClicked: root.chosen = reason.modelData
        }
    }
}
