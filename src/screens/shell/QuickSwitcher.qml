import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit
import Lumenpair.Shell

/// Goes to a conversation, a page or a command by a few letters of its name.
LMPModal {
    id: root

    required property QuickSwitcherModel model

    function take(row: int): void {
        root.close();
        root.model.choose(row);
    }

    accessibleName: "快速切换"
    height: Math.min(implicitHeight, root.windowHeight - 2 * Theme.dp(40))
    implicitHeight: field.height + list.contentHeight + Theme.dp(32) + (list.count === 0 ? nothing.height : 0)
    width: Math.min(Theme.dp(560), root.windowWidth - 2 * Theme.dp(16))
    y: Math.max(Theme.dp(16), Math.round(root.windowHeight * 0.14))

    onAboutToShow: {
        field.clear();
        root.model.open();
        field.forceActiveFocus(Qt.PopupFocusReason);
    }
    onEscaped: root.close()

    contentItem: FocusScope {
        Keys.onPressed: event => {
            // Letters that are being composed have the arrows and Enter to themselves.
            if (field.inputMethodComposing)
                return;
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
                if (!event.isAutoRepeat)
                    root.take(root.model.current);
                break;
            case Qt.Key_Escape:
                root.escaped();
                break;
            default:
                return;
            }
            event.accepted = true;
        }
        focus: true

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

        ListView {
            id: list

            Accessible.name: "去处"
            Accessible.role: Accessible.List
            anchors.bottom: parent.bottom
            anchors.bottomMargin: Theme.dp(8)
            anchors.left: parent.left
            anchors.leftMargin: Theme.dp(8)
            anchors.right: parent.right
            anchors.rightMargin: Theme.dp(8)
            anchors.top: field.bottom
            anchors.topMargin: Theme.dp(8)
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            currentIndex: root.model.current
            highlightMoveDuration: 0
            model: root.model

            T.ScrollBar.vertical: LMPScrollBar {
            }

            delegate: LMPRow {
                required property int index
                required property string kindText
                required property string shortcutText
                required draft
                required iconName
                required title
                required unread

                focusPolicy: Qt.NoFocus
                selected: ListView.isCurrentItem
                trailingText: shortcutText === "" ? kindText : shortcutText
                rightPadding: Theme.dp(16)
                width: ListView.view.width
                onClicked: root.take(index)
            }
        }
    }
}
