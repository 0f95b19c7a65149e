import QtQuick

/// What an LMPRow shows: an avatar or an icon, one or two lines, and at the right what must not be missed. What a row
/// does not have is not made: a list has many rows.
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

    readonly property real marksRoom: marks.width > 0 ? marks.width + Theme.space8 : 0
    readonly property real textLeft: root.avatarText !== "" ? Theme.dp(root.twoLine ? 42 : 30) : root.iconName !== "" ? icon.width + Theme.space8 : 0
    readonly property real trailingRoom: root.trailingText === "" ? 0 : trailing.width + Theme.space8

    Loader {
        active: root.avatarText !== ""
        source: "LMPAvatar.qml"
        y: Math.round((root.height - height) / 2)
        onLoaded: {
            const avatar = item as LMPAvatar;
            avatar.name = Qt.binding(() => root.avatarText);
            avatar.size = Qt.binding(() => root.twoLine ? 32 : 22);
        }
    }

    LMPIcon {
        id: icon

        color: !root.active ? Theme.disabled : root.selected ? Theme.accent : Theme.text2
        name: root.avatarText === "" ? root.iconName : ""
        size: 18
        y: Math.round((root.height - height) / 2)
    }

    LMPText {
        id: heading

        Accessible.ignored: true
        color: root.active ? Theme.text : Theme.disabled
        elide: Text.ElideRight
        font.weight: root.unread > 0 ? Font.DemiBold : Font.Normal
        text: root.title
        width: root.width - x - root.trailingRoom - (root.twoLine ? 0 : root.marksRoom)
        wrapMode: Text.NoWrap
        x: root.textLeft
        y: Math.round((root.height - heading.lineHeight - (root.twoLine ? below.lineHeight : 0)) / 2)
    }

    LMPText {
        id: trailing

        Accessible.ignored: true
        anchors.baseline: heading.baseline
        color: root.active ? Theme.text3 : Theme.disabled
        elide: Text.ElideRight
        kind: LMPText.Caption
        text: root.trailingText
        width: Math.min(Math.ceil(implicitWidth), root.width / 2)
        wrapMode: Text.NoWrap
        x: root.width - width - (root.twoLine ? 0 : root.marksRoom)
    }

    LMPText {
        id: below

        Accessible.ignored: true
        color: root.active ? Theme.text2 : Theme.disabled
        elide: Text.ElideRight
        kind: LMPText.Caption
        text: root.twoLine ? root.subtitle : ""
        width: root.width - x - root.marksRoom
        wrapMode: Text.NoWrap
        x: root.textLeft
        y: heading.y + heading.lineHeight
    }

    Loader {
        id: marks

        active: root.draft || root.unread > 0 || root.waitingText !== ""
        source: "LMPRowMarks.qml"
        x: root.width - width
        y: root.twoLine ? Math.round(below.y + (below.lineHeight - height) / 2) : Math.round((root.height - height) / 2)
        onLoaded: {
            const row = item as LMPRowMarks;
            row.draft = Qt.binding(() => root.draft);
            row.unread = Qt.binding(() => root.unread);
            row.waitingText = Qt.binding(() => root.waitingText);
        }
    }
}
