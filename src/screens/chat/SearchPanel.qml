import QtQuick
import QtQuick.Templates as T
import Lumenpair.Chat
import Lumenpair.Kit

/// The search over all conversations: what is typed, and the messages that hold it. The keyboard stays with what is
/// typed; the arrows move along the results.
FocusScope {
    id: root

    required property ConversationSearchModel model

    signal dismissed
    signal taken(int row)

    function begin(): void {
        field.text = root.model.query;
        field.forceActiveFocus(Qt.PopupFocusReason);
        field.selectAll();
        root.model.open();
    }

    Accessible.name: "在所有对话里查找"
    Accessible.role: Accessible.Dialog
    Keys.onPressed: event => {
        // Letters that are being composed have the arrows and Enter to themselves.
        if (field.inputMethodComposing)
            return;
        event.accepted = true;
        switch (event.key) {
        case Qt.Key_Down:
            root.model.move(1);
            break;
        case Qt.Key_Up:
            root.model.move(-1);
            break;
        case Qt.Key_PageDown:
            root.model.move(6);
            break;
        case Qt.Key_PageUp:
            root.model.move(-6);
            break;
        case Qt.Key_Return:
        case Qt.Key_Enter:
            if (!event.isAutoRepeat && root.model.current >= 0)
                root.taken(root.model.current);
            break;
        case Qt.Key_Escape:
            root.dismissed();
            break;
        default:
            event.accepted = false;
        }
    }
    implicitHeight: field.height + notes.height + (list.count > 0 ? list.contentHeight + Theme.dp(8) : 0) + Theme.dp(28)

    LMPTextField {
        id: field

        focus: true
        iconName: "search"
        placeholderText: "在所有对话的消息里查找，一个字也行"
        width: parent.width - 2 * x
        x: Theme.dp(12)
        y: Theme.dp(12)

        onTextEdited: root.model.query = field.text
    }
    Column {
        id: notes

        anchors.top: field.bottom
        anchors.topMargin: Theme.dp(8)
        spacing: Theme.space2
        width: parent.width - 2 * x
        x: Theme.dp(16)

        LMPText {
            Accessible.role: Accessible.AlertMessage
            color: Theme.text2
            kind: LMPText.Caption
            text: root.model.statusText
            visible: text !== ""
            width: parent.width
        }
        LMPText {
            color: Theme.text3
            kind: LMPText.Caption
            text: root.model.coverageText
            visible: text !== ""
            width: parent.width
        }
    }
    SearchResults {
        id: list

        Accessible.name: "找到的消息"
        Accessible.role: Accessible.List
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.dp(8)
        anchors.left: parent.left
        anchors.leftMargin: Theme.dp(8)
        anchors.right: parent.right
        anchors.top: notes.bottom
        anchors.topMargin: Theme.dp(8)
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        currentIndex: root.model.current
        highlightMoveDuration: 0
        model: root.model

        T.ScrollBar.vertical: LMPScrollBar {
        }
        delegate: SearchResultRow {
        }

        onAtYEndChanged: {
            if (list.atYEnd)
                root.model.fetchOlder();
        }
        onTaken: row => root.taken(row)
    }
}
