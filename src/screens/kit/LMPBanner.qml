import QtQuick

/// A sentence across a page, with at most two things to do about it. The actions stand at its right, or below it where
/// there is no room.
Rectangle {
    id: root

    enum Tone {
        Info,
        Success,
        Warning,
        Danger,
        Care
    }

    property string actionText
    property bool closable: false
    property string secondActionText
    property string text
    property int tone: LMPBanner.Info
    readonly property bool acts: root.actionText !== "" || root.secondActionText !== ""
    readonly property real room: root.width - sentence.x - (root.closable ? close.width + Theme.space4 : 0) - Theme.space12
    readonly property bool crowded: sentence.implicitWidth + actions.implicitWidth + Theme.space16 > root.room
    readonly property bool stacked: root.acts && root.crowded && actions.implicitWidth > root.room * 0.35

    signal action
    signal closed
    signal secondAction

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

    function fillOf(tone: int): color {
        switch (tone) {
        case LMPBanner.Success:
            return Theme.successSoft;
        case LMPBanner.Warning:
            return Theme.warningSoft;
        case LMPBanner.Danger:
            return Theme.dangerSoft;
        case LMPBanner.Care:
            return Theme.careSoft;
        }
        return Theme.sunken;
    }

    function iconOf(tone: int): string {
        return ["info", "check", "warning", "error", "care"][tone];
    }

    Accessible.name: root.text
    Accessible.role: Accessible.AlertMessage
    color: root.fillOf(root.tone)
    implicitHeight: Math.max(Theme.dp(44), body.implicitHeight + 2 * Theme.space8)
    implicitWidth: Theme.dp(560)
    radius: Theme.radiusRow
    width: parent ? parent.width : implicitWidth

    LMPIcon {
        id: icon

        color: root.inkOf(root.tone)
        name: root.iconOf(root.tone)
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
            text: root.text
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
                text: root.actionText
                visible: root.actionText !== ""
                onClicked: root.action()
            }

            LMPButton {
                kind: LMPButton.Quiet
                text: root.secondActionText
                visible: root.secondActionText !== ""
                onClicked: root.secondAction()
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
        visible: root.closable
        y: body.y + Math.round(((root.stacked ? sentence.lineHeight : body.implicitHeight) - height) / 2)
        onClicked: root.closed()
    }
}
