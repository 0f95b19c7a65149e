import QtQuick

/// A page of the window: a bar of 44 with its title and actions, banners below it, and the content in what is left.
FocusScope {
    id: root

    property alias actions: actionRow.data
    property alias banners: bannerColumn.data
    property color color: Theme.surface
    default property alias content: body.data
    /// At the left of the title: a way back, or the button that shows a hidden sidebar.
    property alias leading: leadingRow.data
    property string subtitle
    property string title

    Accessible.name: root.title
    Accessible.role: Accessible.Pane

    Rectangle {
        anchors.fill: parent
        color: root.color
    }

    Item {
        id: bar

        height: Theme.dp(44)
        width: root.width

        Row {
            id: leadingRow

            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.space4
            x: Theme.space8
        }

        LMPText {
            id: heading

            Accessible.name: root.title
            Accessible.role: Accessible.Heading
            anchors.verticalCenter: parent.verticalCenter
            elide: Text.ElideRight
            kind: LMPText.H3
            text: root.title
            width: Math.max(0, Math.min(implicitWidth, actionRow.x - x - Theme.space12))
            wrapMode: Text.NoWrap
            x: leadingRow.width > 0 ? leadingRow.x + leadingRow.width + Theme.space8 : Theme.space20
        }

        LMPText {
            anchors.baseline: heading.baseline
            color: Theme.text3
            elide: Text.ElideRight
            kind: LMPText.Caption
            text: root.subtitle
            visible: root.subtitle !== "" && width > Theme.space24
            width: Math.max(0, Math.min(implicitWidth, actionRow.x - x - Theme.space12))
            wrapMode: Text.NoWrap
            x: heading.x + heading.width + Theme.space8
        }

        Row {
            id: actionRow

            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.space4
            x: bar.width - width - Theme.space12
        }

        LMPSeparator {
            anchors.bottom: parent.bottom
        }
    }

    Column {
        id: bannerColumn

        spacing: Theme.space8
        topPadding: bannerColumn.childrenRect.height > 0 ? Theme.space8 : 0
        width: root.width - 2 * Theme.space12
        x: Theme.space12
        y: bar.height
    }

    Item {
        id: body

        clip: true
        height: root.height - y
        width: root.width
        y: bannerColumn.y + (bannerColumn.childrenRect.height > 0 ? bannerColumn.height : 0)
    }
}
