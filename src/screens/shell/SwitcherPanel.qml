import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit
import Lumenpair.Shell

/// What the quick switcher shows: what is typed, and where it may lead. The keyboard stays with what is typed; the
/// arrows move along the list.
FocusScope {
    id: root

    required property QuickSwitcherModel model

    signal dismissed
    signal taken(int row)

    function begin(): void {
        field.clear();
        root.model.open();
        field.forceActiveFocus(Qt.PopupFocusReason);
    }

    Accessible.name: "快速切换"
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
            root.model.current = Math.min(list.count - 1, root.model.current + 8);
            break;
        case Qt.Key_PageUp:
            root.model.current = Math.max(0, root.model.current - 8);
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
    implicitHeight: field.height + (list.count > 0 ? list.contentHeight : nothing.height) + Theme.dp(28)

    LMPTextField {
        id: field

        focus: true
        iconName: "search"
        placeholderText: "去哪里？可以打汉字、拼音或首字母"
        width: parent.width - 2 * x
        x: Theme.dp(12)
        y: Theme.dp(12)
        onTextEdited: root.model.query = field.text
    }

    LMPText {
        id: nothing

        color: Theme.text2
        horizontalAlignment: Text.AlignHCenter
        padding: Theme.dp(12)
        text: "没有这样的对话、页面或命令。"
        visible: list.count === 0
        width: parent.width
        y: field.y + field.height
    }

    SwitcherList {
        id: list

        Accessible.name: "去处"
        Accessible.role: Accessible.List
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.dp(8)
        anchors.left: parent.left
        anchors.leftMargin: Theme.dp(8)
        anchors.right: parent.right
        anchors.top: field.bottom
        anchors.topMargin: Theme.dp(8)
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        currentIndex: root.model.current
        highlightMoveDuration: 0
        model: root.model

        T.ScrollBar.vertical: LMPScrollBar {
        }

        delegate: SwitcherRow {
        }

        onTaken: row => root.taken(row)
    }
}
