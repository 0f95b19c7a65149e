import QtQuick

/// What an LMPBanner consists of.
Item {
    id: root

    required property LMPBanner banner
    readonly property bool acts: root.banner.actionText !== "" || root.banner.secondActionText !== ""
    readonly property real room: root.width - sentence.x - (root.banner.closable ? close.width + Theme.space4 : 0) - Theme.space12
    readonly property bool crowded: sentence.implicitWidth + actions.implicitWidth + Theme.space16 > root.room
    readonly property bool stacked: root.acts && root.crowded && actions.implicitWidth > root.room * 0.35

    function inkOf(tone: int): color {
        switch (tone) {
        case LMPBanner.Success:
            return Theme.success;
        case LMPBanner.Warning:
            return Theme.warning;
        case LMPBanner.Danger:
            return Theme.danger;
        case LMPBanner.Care:
            return Theme.care;
        }
        return Theme.text2;
    }

    function iconOf(tone: int): string {
        return ["info", "check", "warning", "error", "care"][tone];
    }

    implicitHeight: body.implicitHeight + 2 * Theme.space8

    LMPIcon {
        id: icon

        color: root.inkOf(root.banner.tone)
        name: root.iconOf(root.banner.tone)
        size: 18
        x: Theme.space12
        y: body.y + sentence.y + Math.round((sentence.lineHeight - height) / 2)
    }

    Item {
        id: body

        implicitHeight: root.stacked ? sentence.height + Theme.space4 + actions.height : Math.max(sentence.height, root.acts ? actions.height : 0)
        height: implicitHeight
        width: root.width
        y: Math.round((root.height - implicitHeight) / 2)

        LMPText {
            id: sentence

            Accessible.ignored: true
            text: root.banner.text
            width: root.stacked || !root.acts ? root.room : root.room - actions.implicitWidth - Theme.space16
            x: icon.x + icon.width + Theme.space8
            y: root.stacked ? 0 : Math.round((parent.implicitHeight - height) / 2)
        }

        Row {
            id: actions

            spacing: Theme.space8
            visible: root.acts
            x: root.stacked ? sentence.x : sentence.x + root.room - width
            y: root.stacked ? sentence.height + Theme.space4 : Math.round((parent.implicitHeight - height) / 2)

            LMPButton {
                text: root.banner.actionText
                visible: root.banner.actionText !== ""
                onClicked: root.banner.action()
            }

            LMPButton {
                kind: LMPButton.Quiet
                text: root.banner.secondActionText
                visible: root.banner.secondActionText !== ""
                onClicked: root.banner.secondAction()
            }
        }
    }

    LMPIconButton {
        id: close

        anchors.right: parent.right
        anchors.rightMargin: Theme.space4
        iconName: "close"
        iconSize: 16
        implicitHeight: Theme.target
        text: "关闭这条提示"
        visible: root.banner.closable
        y: body.y + Math.round(((root.stacked ? sentence.lineHeight : body.implicitHeight) - height) / 2)
        onClicked: root.banner.closed()
    }
}
