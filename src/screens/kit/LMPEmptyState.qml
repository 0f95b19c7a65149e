import QtQuick

/// Nothing here yet: one sentence, and one thing to do where there is one.
Column {
    id: root

    property string actionText
    property string iconName
    property color iconColor: Theme.text3
    property int actionKind: LMPButton.Primary
    property string text

    signal action

    /// For a page where there is nothing else to do.
    function focusAction(): void {
        button.forceActiveFocus(Qt.TabFocusReason);
    }

    Accessible.name: root.text
    Accessible.role: Accessible.StaticText
    spacing: Theme.space12
    width: Math.min(Theme.dp(420), parent ? parent.width - 2 * Theme.space16 : Theme.dp(420))

    LMPIcon {
        anchors.horizontalCenter: parent.horizontalCenter
        color: root.iconColor
        name: root.iconName
        size: 32
        visible: root.iconName !== ""
    }

    LMPText {
        id: words

        Accessible.ignored: true
        anchors.horizontalCenter: parent.horizontalCenter
        color: Theme.text2
        horizontalAlignment: Text.AlignHCenter
        text: root.text
        width: words.balanced(root.width)
    }

    LMPButton {
        id: button

        anchors.horizontalCenter: parent.horizontalCenter
        kind: root.actionKind
        text: root.actionText
        visible: root.actionText !== ""
        onClicked: root.action()
    }
}
