import QtQuick

/// A sheet over the window: a title, content that scrolls when the window is low, and one primary action.
///
/// The owner acts on `accepted` and closes the sheet itself when that worked. Esc, the cross and the second button
/// close it and report `rejected`; where `hasTypedInput`, each asks before what was typed is lost. On its way out it
/// hears nothing any more.
LMPModal {
    id: root

    default property alias content: scroll.content
    property bool hasTypedInput: false
    property bool primaryBusy: false
    property bool primaryEnabled: true
    property string primaryText
    property string secondaryText: "取消"
    property string title
    property real sheetWidth: 560

    signal accepted
    signal rejected

    /// Closes as a person would: asks first where something would be lost.
    function dismiss(): void {
        if (!root.held)
            return;
        if (root.hasTypedInput) {
            question.active = true;
            (question.item as LMPDiscardDialog).open();
        } else {
            root.giveUp();
        }
    }

    function accept(): void {
        if (root.held)
            root.accepted();
    }

    function giveUp(): void {
        root.close();
        root.rejected();
    }

    accessibleName: root.title
    height: Math.min(implicitHeight, root.windowHeight - 2 * Theme.space16)
    implicitHeight: header.height + scroll.contentHeight + footer.height
    scroller: scroll
    width: Math.min(Theme.dp(root.sheetWidth), root.windowWidth - 2 * Theme.space16)

    LMPScrollView {
        id: scroll

        anchors.bottom: footer.top
        anchors.top: header.bottom
        bottomPadding: Theme.space16
        horizontalPadding: Theme.space20
        spacing: Theme.space12
        topPadding: Theme.space4
        width: parent.width
    }

    Item {
        id: footer

        anchors.bottom: parent.bottom
        height: root.primaryText !== "" || root.secondaryText !== "" ? actions.height + 2 * Theme.space12 : Theme.space4
        width: parent.width

        LMPSeparator {
            visible: scroll.contentHeight > scroll.height
        }

        Row {
            id: actions

            anchors.right: parent.right
            anchors.rightMargin: Theme.space20
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.space8

            LMPButton {
                text: root.secondaryText
                visible: root.secondaryText !== ""
                onClicked: root.dismiss()
            }

            LMPButton {
                busy: root.primaryBusy
                enabled: root.primaryEnabled
                kind: LMPButton.Primary
                text: root.primaryText
                visible: root.primaryText !== ""
                onClicked: root.accept()
            }
        }
    }

    Item {
        id: header

        height: Math.max(Theme.dp(52), heading.implicitHeight + 2 * Theme.space12)
        width: parent.width

        LMPText {
            id: heading

            Accessible.role: Accessible.Heading
            anchors.verticalCenter: parent.verticalCenter
            kind: LMPText.H3
            text: root.title
            width: cross.x - x - Theme.space8
            x: Theme.space20
        }

        LMPIconButton {
            id: cross

            anchors.right: parent.right
            anchors.rightMargin: Theme.space12
            anchors.verticalCenter: parent.verticalCenter
            iconName: "close"
            text: "关闭"
            onClicked: root.dismiss()
        }
    }

    Loader {
        id: question

        active: false
        source: "LMPDiscardDialog.qml"
        onLoaded: (item as LMPDiscardDialog).discarded.connect(root.giveUp)
    }

    onEscaped: root.dismiss()
}
