import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// Finds in the open conversation. Enter goes to the match above, Shift+Enter to the one below, Esc closes the bar.
FocusScope {
    id: root

    required property ChatFind find

    signal closed

    function begin(): void {
        if (field.text !== root.find.text)
            field.text = root.find.text;
        field.forceActiveFocus(Qt.ShortcutFocusReason);
        field.selectAll();
    }

    Accessible.name: "在这段对话里查找"
    Accessible.role: Accessible.Grouping
    implicitHeight: row.height + Theme.space12
    Keys.onPressed: event => {
        // Letters that are being composed have Enter and Esc to themselves.
        if (field.inputMethodComposing)
            return;
        event.accepted = true;
        switch (event.key) {
        case Qt.Key_Return:
        case Qt.Key_Enter:
            if (!field.activeFocus)
                event.accepted = false;
            else if (event.modifiers & Qt.ShiftModifier)
                root.find.next();
            else
                root.find.previous();
            break;
        case Qt.Key_Escape:
            root.find.close();
            root.closed();
            break;
        default:
            event.accepted = false;
        }
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.sunken
    }
    Row {
        id: row

        anchors.left: parent.left
        anchors.leftMargin: Theme.space12
        anchors.right: cross.left
        anchors.rightMargin: Theme.space8
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.space8

        LMPTextField {
            id: field

            focus: true
            iconName: "search"
            placeholderText: "在这段对话里查找"
            text: root.find.text
            width: Math.min(Theme.dp(360), row.width - status.width - buttons.width - 2 * row.spacing)

            onTextEdited: root.find.text = field.text
        }
        Row {
            id: buttons

            anchors.verticalCenter: parent.verticalCenter

            LMPIconButton {
                enabled: root.find.count > 0
                iconName: "chevron-up"
                text: "上一处（Enter）"

                onClicked: root.find.previous()
            }
            LMPIconButton {
                enabled: root.find.count > 0
                iconName: "chevron-down"
                text: "下一处（Shift+Enter）"

                onClicked: root.find.next()
            }
        }
        LMPText {
            id: status

            Accessible.role: Accessible.AlertMessage
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.text2
            kind: LMPText.Caption
            text: root.find.statusText
            wrapMode: Text.NoWrap
        }
    }
    LMPIconButton {
        id: cross

        anchors.right: parent.right
        anchors.rightMargin: Theme.space12
        anchors.verticalCenter: parent.verticalCenter
        iconName: "close"
        text: "关闭查找（Esc）"

        onClicked: {
            root.find.close();
            root.closed();
        }
    }
}
