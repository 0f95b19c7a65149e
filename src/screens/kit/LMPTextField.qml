import QtQuick
import QtQuick.Templates as T
import "inputKeys.js" as InputKeys

/// One line of text with its label above and, below it, help or what is wrong. A secret one hides what is typed and
/// offers to show it.
FocusScope {
    id: root

    property alias cursorPosition: field.cursorPosition
    property string errorText
    property string helpText
    property string iconName
    property alias inputMethodComposing: field.inputMethodComposing
    property alias inputMethodHints: field.inputMethodHints
    property string label
    property alias maximumLength: field.maximumLength
    property string placeholderText
    property alias readOnly: field.readOnly
    property bool secret: false
    property alias text: field.text
    property alias validator: field.validator

    signal accepted
    signal textEdited

    function clear(): void {
        field.clear();
    }

    /// Copies all of it; a secret one's stays where it is.
    function copyAll(): void {
        field.selectAll();
        field.copy();
        field.deselect();
    }

    function selectAll(): void {
        field.selectAll();
    }

    implicitHeight: column.implicitHeight
    implicitWidth: Theme.dp(240)

    Column {
        id: column

        spacing: Theme.space4
        width: root.width

        LMPText {
            Accessible.ignored: true
            color: root.enabled ? Theme.text : Theme.disabled
            kind: LMPText.Label
            text: root.label
            visible: root.label !== ""
            width: parent.width
        }

        T.TextField {
            id: field

            readonly property string called: root.label !== "" ? root.label : root.placeholderText
            readonly property bool failed: root.errorText !== ""
            readonly property bool ringed: field.activeFocus && InputKeys.cameByKey(field.focusReason)

            function menu(atCursor: bool): void {
                textMenu.setSource("LMPTextMenu.qml", {
                        "line": field
                    });
                const options = textMenu.item as LMPTextMenu;
                if (atCursor)
                    options.popup(field, field.cursorRectangle.x, field.cursorRectangle.y + field.cursorRectangle.height);
                else
                    options.popup();
            }

            // Qt keeps the name of a password field to itself, so its label is said here.
            Accessible.description: (root.secret ? field.called + "。" : "") + (!root.enabled ? "不可用" : field.failed ? root.errorText : root.helpText)
            Accessible.name: field.called
            Accessible.passwordEdit: root.secret
            Keys.onMenuPressed: event => {
                if (InputKeys.opensMenu(field, event))
                    field.menu(true);
            }
            Keys.onPressed: event => {
                if (field.inputMethodComposing && InputKeys.heldByComposition(event.key))
                    event.accepted = true;
            }
            color: !root.enabled ? Theme.disabled : field.readOnly ? Theme.text2 : Theme.text
            echoMode: root.secret && !reveal.shows ? TextInput.Password : TextInput.Normal
            focus: true
            font.family: Theme.fontFamily
            font.pixelSize: Theme.sp(14)
            hoverEnabled: true
            implicitHeight: Math.max(Theme.target, Theme.control)
            leftPadding: root.iconName === "" ? Theme.dp(10) : Theme.dp(34)
            rightPadding: root.secret ? Theme.dp(36) : Theme.dp(10)
            selectByMouse: true
            selectedTextColor: Theme.onAccent
            selectionColor: Theme.accent
            verticalAlignment: TextInput.AlignVCenter
            width: parent.width

            background: LMPFieldFrame {
                failed: field.failed
                focused: field.activeFocus
                hovered: field.hovered
                ringed: field.ringed
                writable: !field.readOnly
            }

            onAccepted: root.accepted()
            onPressed: event => {
                if (event.button === Qt.RightButton)
                    field.menu(false);
            }
            // What cannot be typed into is read, and from its beginning.
            onTextChanged: {
                if (field.readOnly && !field.activeFocus)
                    field.cursorPosition = 0;
            }
            onTextEdited: root.textEdited()

            Loader {
                active: root.placeholderText !== ""
                anchors.left: parent.left
                anchors.leftMargin: field.leftPadding
                anchors.right: parent.right
                anchors.rightMargin: field.rightPadding
                anchors.verticalCenter: parent.verticalCenter
                source: "LMPFieldHint.qml"
                visible: active && field.text === "" && field.preeditText === ""
                onLoaded: {
                    const hint = item as LMPFieldHint;
                    hint.writable = Qt.binding(() => root.enabled);
                    hint.text = Qt.binding(() => root.placeholderText);
                }
            }

            LMPIcon {
                anchors.left: parent.left
                anchors.leftMargin: Theme.dp(10)
                anchors.verticalCenter: parent.verticalCenter
                color: root.enabled ? Theme.text3 : Theme.disabled
                name: root.iconName
                size: 16
            }

            Loader {
                id: reveal

                readonly property bool shows: reveal.item !== null && (reveal.item as LMPReveal).checked

                active: root.secret
                anchors.right: parent.right
                anchors.rightMargin: Theme.space2
                anchors.verticalCenter: parent.verticalCenter
                source: "LMPReveal.qml"
            }

            Loader {
                id: textMenu
            }
        }

        Loader {
            active: field.failed || root.helpText !== ""
            source: "LMPFieldNote.qml"
            // An emptied loader keeps its height.
            visible: active
            width: parent.width
            onLoaded: {
                const note = item as LMPFieldNote;
                note.failed = Qt.binding(() => field.failed);
                note.text = Qt.binding(() => field.failed ? root.errorText : root.helpText);
            }
        }
    }
}
