import QtQuick
import QtQuick.Templates as T
import "popupLayers.js" as PopupLayers

/// One of many, chosen from a list that opens below. `label` stands above it.
FocusScope {
    id: root

    property alias currentIndex: box.currentIndex
    readonly property alias currentText: box.currentText
    property string label
    property list<string> model
    readonly property bool opened: box.down

    signal activated(int index)

    implicitHeight: column.implicitHeight
    implicitWidth: Theme.dp(200)

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

        T.ComboBox {
            id: box

            Accessible.description: root.enabled ? box.displayText : "不可用"
            Accessible.name: root.label !== "" ? root.label : box.displayText
            Accessible.role: Accessible.ComboBox
            // As the template has it: what a key does to the list happens when it is let go.
            Keys.onReleased: event => {
                if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && !event.isAutoRepeat && !box.popup.visible) {
                    box.popup.open();
                    event.accepted = true;
                }
            }
            focus: true
            focusPolicy: Qt.StrongFocus
            hoverEnabled: true
            implicitHeight: Math.max(Theme.target, Theme.control)
            leftPadding: Theme.dp(10)
            model: root.model
            rightPadding: Theme.dp(32)
            width: parent.width

            background: LMPFieldFrame {
                focused: box.down
                hovered: box.hovered
                ringed: box.visualFocus
            }

            contentItem: LMPText {
                Accessible.ignored: true
                color: root.enabled ? Theme.text : Theme.disabled
                elide: Text.ElideRight
                text: box.displayText
                verticalAlignment: Text.AlignVCenter
                wrapMode: Text.NoWrap
            }

            delegate: LMPComboEntry {
            }

            indicator: LMPIcon {
                color: root.enabled ? Theme.text2 : Theme.disabled
                name: "chevron-down"
                size: 16
                x: box.width - width - Theme.space8
                y: Math.round((box.height - height) / 2)
            }

            popup: T.Popup {
                height: Math.min(contentItem.implicitHeight + topPadding + bottomPadding, Theme.dp(320))
                margins: Theme.space8
                padding: Theme.space4
                width: box.width
                y: box.height + Theme.space4

                background: Rectangle {
                    border.color: Theme.borderStrong
                    border.width: 1
                    color: Theme.surface
                    radius: Theme.radiusRow
                }

                contentItem: LMPComboList {
                    chosen: box.currentIndex
                    currentIndex: box.highlightedIndex
                    model: box.delegateModel
                }

                onAboutToShow: box.popup.z = PopupLayers.layerOf(box, T.Overlay.overlay)
            }

            onActivated: index => root.activated(index)
        }
    }
}
