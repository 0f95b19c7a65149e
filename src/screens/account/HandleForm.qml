import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// The field for a handle, what the service says to it, and suggestions.
Column {
    id: root

    required property HandleModel handle

    signal submitted

    function focusFirst(): void {
        field.forceActiveFocus();
    }

    spacing: Theme.space12

    LMPTextField {
        id: field

        errorText: root.handle.errorText
        focus: true
        helpText: root.handle.checkText
        inputMethodHints: Qt.ImhNoAutoUppercase | Qt.ImhNoPredictiveText | Qt.ImhPreferLatin
        label: "主页名"
        placeholderText: root.handle.current
        readOnly: root.handle.saving
        text: root.handle.input
        width: parent.width
        onAccepted: root.submitted()
        onTextEdited: root.handle.input = field.text
    }

    Flow {
        enabled: !root.handle.saving
        spacing: Theme.space8
        visible: suggestions.count > 0
        width: parent.width

        LMPText {
            color: Theme.text2
            height: Theme.target
            kind: LMPText.Caption
            text: "可以试试"
            verticalAlignment: Text.AlignVCenter
        }

        Repeater {
            id: suggestions

            model: root.handle.suggestions

            delegate: LMPChip {
                required property string modelData

                clickable: true
                text: modelData
            }

            onItemAdded: (index, item) => {
                const chip = item as LMPChip;
                chip.clicked.connect(() => root.handle.input = chip.text);
            }
        }
    }
}
