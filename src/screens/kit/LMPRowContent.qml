import QtQuick

/// What an LMPRow shows: an avatar or an icon, one or two lines, and at the right what must not be missed.
Item {
    id: root

    property bool active: true
    property string avatarText
    property bool draft: false
    property string iconName
    property bool selected: false
    property string subtitle
    property string title
    property string trailingText
    property bool twoLine: false
    property int unread: 0
    property string waitingText

    readonly property color ink: !root.active ? Theme.disabled : Theme.text
    readonly property real textLeft: root.avatarText !== "" ? avatar.width + Theme.dp(10) : root.iconName !== "" ? icon.width + Theme.space8 : 0

    LMPAvatar {
        id: avatar

        anchors.verticalCenter: parent.verticalCenter
        name: root.avatarText
        size: root.twoLine ? 32 : 22
        visible: root.avatarText !== ""
    }

    LMPIcon {
        id: icon

        anchors.verticalCenter: parent.verticalCenter
        color: !root.active ? Theme.disabled : root.selected ? Theme.accent : Theme.text2
        name: root.avatarText === "" ? root.iconName : ""
        size: 18
    }

    LMPText {
        id: heading

        Accessible.ignored: true
        anchors.verticalCenter: root.twoLine ? undefined : parent.verticalCenter
        color: root.ink
        elide: Text.ElideRight
        font.weight: root.unread > 0 ? Font.DemiBold : Font.Normal
        text: root.title
        width: parent.width - x - (trailing.visible ? trailing.width + Theme.space8 : 0) - (root.twoLine ? 0 : marks.width + (marks.width > 0 ? Theme.space8
                                                                                                                                            : 0))
        wrapMode: Text.NoWrap
        x: root.textLeft
        y: root.twoLine ? Math.round((parent.height - heading.lineHeight - below.lineHeight) / 2) : 0
    }

    LMPText {
        id: trailing

        Accessible.ignored: true
        anchors.baseline: heading.baseline
        color: root.active ? Theme.text3 : Theme.disabled
        kind: LMPText.Caption
        text: root.trailingText
        visible: root.trailingText !== ""
        width: Math.min(implicitWidth, parent.width / 2)
        elide: Text.ElideRight
        wrapMode: Text.NoWrap
        x: parent.width - width - (root.twoLine || marks.width === 0 ? 0 : marks.width + Theme.space8)
    }

    LMPText {
        id: below

        Accessible.ignored: true
        color: root.active ? Theme.text2 : Theme.disabled
        elide: Text.ElideRight
        kind: LMPText.Caption
        text: root.subtitle
        visible: root.twoLine
        width: parent.width - x - marks.width - (marks.width > 0 ? Theme.space8 : 0)
        wrapMode: Text.NoWrap
        x: root.textLeft
        y: heading.y + heading.lineHeight
    }

    Row {
        id: marks

        anchors.right: parent.right
        spacing: Theme.dp(6)
        y: root.twoLine ? Math.round(below.y + (below.lineHeight - height) / 2) : Math.round((parent.height - height) / 2)

        LMPText {
            Accessible.ignored: true
            color: Theme.warning
            kind: LMPText.Caption
            text: "草稿"
            visible: root.draft
        }

        Row {
            spacing: Theme.space4
            visible: root.waitingText !== ""

            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.accent
                height: width
                radius: width / 2
                width: Theme.dp(7)
            }

            LMPText {
                Accessible.ignored: true
                color: Theme.link
                kind: LMPText.Caption
                text: root.waitingText
                wrapMode: Text.NoWrap
            }
        }

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.accent
            height: Theme.dp(18)
            radius: height / 2
            visible: root.unread > 0
            width: Math.max(height, count.implicitWidth + Theme.dp(10))

            LMPText {
                id: count

                Accessible.ignored: true
                anchors.centerIn: parent
                color: Theme.onAccent
                font.weight: Font.DemiBold
                kind: LMPText.Caption
                lineHeight: Theme.dp(18)
                text: root.unread > 99 ? "99+" : root.unread
                wrapMode: Text.NoWrap
            }
        }
    }
}
