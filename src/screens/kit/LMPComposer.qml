import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit
import "inputKeys.js" as InputKeys

/// Where a message is written. 44 to 220 high, grows with the text and scrolls from there on.
///
/// Enter sends what is there (`submitted`), Shift+Enter breaks the line; Esc stops, only while `busy`. What is submitted
/// while `busy` is the owner's to hold back, and to say why in `hint`. While an input method composes, none of these does
/// anything, and nothing here touches the text. `text` belongs to the owner, who clears it when the message was taken
/// over: what was typed is never lost to a send that failed. A click on its button leaves the keyboard in the text.
FocusScope {
    id: root

    property alias attachmentsArea: attachments.data
    property bool busy: false
    property bool canSend: true
    property string hint
    readonly property alias inputMethodComposing: field.inputMethodComposing
    property string placeholderText
    property alias readOnly: field.readOnly
    property alias text: field.text
    property alias tools: toolRow.data
    /// Something to send that is not only white space, and leave to send it.
    readonly property bool ready: root.canSend && root.enabled && field.filled
    property bool renewing: false

    /// The text is another one, by whatever means.
    signal edited
    /// A key that moves, while there is nothing written to move in.
    signal idleKey(int key)
    signal stopRequested
    signal submitted(string text)

    function clear(): void {
        field.clear();
    }

    /// Puts the caret into the text, whatever in here had the keyboard last.
    function focusText(): void {
        field.forceActiveFocus();
    }

    /// Begins anew with a text that has nothing to do with the one before, which no undo brings back into it.
    function renew(text: string): void {
        root.renewing = true;
        // The editor forgets only what was done to another text.
        if (field.text === text)
            field.text = text + " ";
        field.text = text;
        root.renewing = false;
    }

    /// Ends a composition with what it has come to so far.
    function commit(): void {
        if (!field.inputMethodComposing)
            return;
        Qt.inputMethod.commit(); // qmllint disable type
        // Not every input method does.
        const left = field.preeditText;
        if (left !== "") {
            Qt.inputMethod.reset(); // qmllint disable type
            field.insert(field.cursorPosition, left);
        }
    }

    function submit(): void {
        if (root.ready && !field.inputMethodComposing)
            root.submitted(field.text);
    }

    /// Whether the key was the composer's: Enter, Esc while busy, and what a composition holds.
    function take(key: int, modifiers: int): bool {
        if (field.inputMethodComposing)
            return InputKeys.heldByComposition(key);
        if (key === Qt.Key_Return || key === Qt.Key_Enter) {
            if (modifiers & Qt.ShiftModifier)
                return false;
            root.submit();
            return true;
        }
        if (key === Qt.Key_Escape && root.busy) {
            root.stopRequested();
            return true;
        }
        if (field.length === 0 && InputKeys.moves(key) && !(modifiers & ~Qt.KeypadModifier)) {
            root.idleKey(key);
            return true;
        }
        return false;
    }

    function menu(atCursor: bool): void {
        textMenu.setSource("LMPTextMenu.qml", {
                "area": field
            });
        const options = textMenu.item as LMPTextMenu;
        if (atCursor)
            options.popup(field, field.cursorRectangle.x, field.cursorRectangle.y + field.cursorRectangle.height);
        else
            options.popup();
    }

    implicitHeight: box.height + (note.visible ? note.height + Theme.space4 : 0)
    implicitWidth: Theme.dp(560)

    LMPFieldFrame {
        id: box

        readonly property real buttonTop: height - Theme.dp(6) - Theme.control
        readonly property real least: Theme.dp(44)
        readonly property real most: Theme.dp(220)
        readonly property real textPadding: Math.max(Theme.space4, Math.round((box.least - metrics.height) / 2))

        focused: field.activeFocus
        height: attachments.height + Math.max(box.least, Math.min(box.most, Math.ceil(field.contentHeight + 2 * box.textPadding)))
        hovered: field.hovered
        radius: Theme.radiusComposer
        ringed: field.activeFocus && InputKeys.cameByKey(field.focusReason)
        width: root.width
        writable: !field.readOnly

        // A click beside the text is meant for it.
        MouseArea {
            anchors.fill: parent
            cursorShape: Qt.IBeamCursor
            onPressed: field.forceActiveFocus(Qt.MouseFocusReason)
        }

        Column {
            id: attachments

            padding: attachments.childrenRect.height > 0 ? Theme.space8 : 0
            spacing: Theme.space4
            width: parent.width
        }

        Row {
            id: toolRow

            spacing: Theme.space2
            x: Theme.dp(6)
            y: box.buttonTop
        }

        Flickable {
            id: flick

            T.ScrollBar.vertical: LMPScrollBar {
            }
            T.TextArea.flickable: T.TextArea {
                id: field

                readonly property LMPLongText longText: LMPLongText {
                    editor: field
                }
                readonly property bool filled: field.length > 0 && /\S/.test(field.text)

                Accessible.description: root.enabled ? root.hint : "不可用"
                Accessible.multiLine: true
                Accessible.name: root.placeholderText !== "" ? root.placeholderText : "消息"
                Keys.onMenuPressed: event => {
                    if (InputKeys.opensMenu(field, event))
                        root.menu(true);
                }
                Keys.onPressed: event => {
                    if (root.take(event.key, event.modifiers) || (!field.inputMethodComposing && InputKeys.leaves(field, event)))
                        event.accepted = true;
                }
                Keys.onShortcutOverride: event => {
                    if (event.key === Qt.Key_Escape && (root.busy || field.inputMethodComposing))
                        event.accepted = true;
                }
                color: root.enabled ? Theme.text : Theme.disabled
                focus: true
                font.family: Theme.fontFamily
                font.pixelSize: Theme.sp(15)
                hoverEnabled: true
                selectByMouse: true
                selectedTextColor: Theme.onAccent
                selectionColor: Theme.accent
                textFormat: TextEdit.PlainText
                wrapMode: TextEdit.Wrap

                onPressed: event => {
                    if (event.button === Qt.RightButton)
                        root.menu(false);
                }
                onTextChanged: {
                    InputKeys.goOnAtEnd(field);
                    if (!root.renewing)
                        root.edited();
                }
            }
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            height: box.height - y - box.textPadding
            width: action.x - x - Theme.space8
            x: toolRow.width > 0 ? toolRow.x + toolRow.width + Theme.space8 : Theme.space16
            y: attachments.height + box.textPadding
        }

        LMPText {
            Accessible.ignored: true
            color: root.enabled ? Theme.text3 : Theme.disabled
            elide: Text.ElideRight
            kind: LMPText.Chat
            text: root.placeholderText
            visible: field.length === 0 && field.preeditText === ""
            width: flick.width
            wrapMode: Text.NoWrap
            x: flick.x
            y: attachments.height + Math.round((box.least - height) / 2)
        }

        LMPIconButton {
            id: action

            readonly property bool stops: root.busy

            // A click leaves the keyboard where one types: what is typed next is no answer to a button.
            focusPolicy: Qt.TabFocus
            enabled: action.stops || root.ready
            iconName: action.stops ? "stop" : "send"
            text: action.stops ? "停止" : "发送"
            x: box.width - width - Theme.dp(6)
            y: box.buttonTop

            background: Rectangle {
                color: action.stops ? Theme.veil(Theme.text, action.down ? 0.2 : action.hovered ? 0.14 : 0.08) : action.enabled ? Theme.accent : Theme.sunken
                radius: Theme.radiusRow

                Rectangle {
                    anchors.fill: parent
                    color: Theme.veil(Theme.dark ? "#FFFFFF" : "#000000", !action.enabled || action.stops ? 0 : action.down ? 0.18 : action.hovered ? 0.09 : 0)
                    radius: parent.radius
                }

                LMPFocusRing {
                    around: parent.radius
                    shown: action.visualFocus
                }
            }

            contentItem: Item {
                LMPIcon {
                    anchors.centerIn: parent
                    color: action.stops ? Theme.text : action.enabled ? Theme.onAccent : Theme.disabled
                    name: action.iconName
                    size: 18
                }
            }

            onActiveFocusChanged: {
                // There is nothing to stop any more, and nothing to send yet.
                if (!action.activeFocus && !action.enabled && root.enabled)
                    field.forceActiveFocus();
            }
            onClicked: {
                if (!action.stops) {
                    root.submit();
                    twice.restart();
                    field.forceActiveFocus();
                } else if (!twice.running)
                    root.stopRequested();
            }

            // The button that sends is the one that stops, and the second click of two is meant for the first.
            Timer {
                id: twice

                interval: Application.styleHints.mouseDoubleClickInterval
            }
        }

        Loader {
            id: textMenu
        }
    }

    FontMetrics {
        id: metrics

        font: field.font
    }

    LMPText {
        id: note

        anchors.top: box.bottom
        anchors.topMargin: Theme.space4
        color: Theme.text3
        kind: LMPText.Caption
        text: root.hint
        visible: root.hint !== ""
        width: root.width - 2 * x
        x: Theme.space12
    }
}
