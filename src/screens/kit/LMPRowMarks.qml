import QtQuick

/// What must not be missed in a row: a draft, a decision that waits, how many are unread.
Row {
    id: root

    property bool draft: false
    property int unread: 0
    property string waitingText

    spacing: Theme.dp(6)

    LMPText {
        Accessible.ignored: true
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.warning
        kind: LMPText.Caption
        text: "草稿"
        visible: root.draft
    }

    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.accent
        height: width
        radius: width / 2
        visible: root.waitingText !== ""
        width: Theme.dp(7)
    }

    LMPText {
        Accessible.ignored: true
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.link
        elide: Text.ElideRight
        kind: LMPText.Caption
        text: root.waitingText
        visible: root.waitingText !== ""
        width: Math.min(implicitWidth, Theme.dp(96))
        wrapMode: Text.NoWrap
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
