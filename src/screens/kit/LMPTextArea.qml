import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit
import "inputKeys.js" as InputKeys

/// Several lines of text with a label above and, below them, help or what is wrong. Grows from `minimumLines` to
/// `maximumLines` and scrolls from there on. Tab leaves it.
FocusScope {
    id: root

    property string errorText
    property string helpText
    property alias inputMethodComposing: field.inputMethodComposing
    property string label
    property int maximumLines: 10
    property int minimumLines: 3
    property string placeholderText
    property alias readOnly: field.readOnly
    property alias text: field.text
    readonly property bool failed: root.errorText !== ""
    readonly property real line: metrics.height

    /// The text is another one, by whatever means.
    signal textEdited

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

    implicitHeight: column.implicitHeight
    implicitWidth: Theme.dp(320)

    FontMetrics {
        id: metrics

        font: field.font
    }

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

        LMPFieldFrame {
            failed: root.failed
            focused: field.activeFocus
            height: Math.max(root.minimumLines * root.line, Math.min(root.maximumLines * root.line, field.contentHeight)) + 2 * Theme.space8
            hovered: field.hovered
            ringed: field.activeFocus && InputKeys.cameByKey(field.focusReason)
            width: parent.width
            writable: !field.readOnly

            Flickable {
                id: flick

                T.ScrollBar.vertical: LMPScrollBar {
                }
                T.TextArea.flickable: T.TextArea {
                    id: field

                    readonly property LMPLongText longText: LMPLongText {
                        editor: field
                    }

                    Accessible.description: !root.enabled ? "不可用" : root.failed ? root.errorText : root.helpText
                    Accessible.multiLine: true
                    Accessible.name: root.label !== "" ? root.label : root.placeholderText
                    Keys.onMenuPressed: event => {
                        if (InputKeys.opensMenu(field, event))
                            root.menu(true);
                    }
                    Keys.onPressed: event => {
                        if (field.inputMethodComposing ? InputKeys.heldByComposition(event.key) : InputKeys.leaves(field, event))
                            event.accepted = true;
                    }
                    color: root.enabled ? Theme.text : Theme.disabled
                    focus: true
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.sp(14)
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
                        root.textEdited();
                    }
                }
                anchors.bottomMargin: Theme.space8
                anchors.fill: parent
                anchors.leftMargin: Theme.dp(10)
                anchors.rightMargin: Theme.dp(10)
                anchors.topMargin: Theme.space8
                boundsBehavior: Flickable.StopAtBounds
                clip: true
            }

            LMPText {
                Accessible.ignored: true
                color: root.enabled ? Theme.text3 : Theme.disabled
                text: root.placeholderText
                visible: field.length === 0 && field.preeditText === ""
                width: parent.width - 2 * x
                x: Theme.dp(10)
                y: Theme.space8
            }

            Loader {
                id: textMenu
            }
        }

        Loader {
            active: root.failed || root.helpText !== ""
            source: "LMPFieldNote.qml"
            // An emptied loader keeps its height.
            visible: active
            width: parent.width
            onLoaded: {
                const note = item as LMPFieldNote;
                note.failed = Qt.binding(() => root.failed);
                note.text = Qt.binding(() => root.failed ? root.errorText : root.helpText);
            }
        }
    }
}
