import QtQuick

/// Something is under way: dots, and words for what. Nothing at all while it is not `running`.
Row {
    id: root

    property bool running: true
    property string text

    Accessible.ignored: !root.running
    Accessible.name: root.text !== "" ? root.text : "正在加载"
    Accessible.role: Accessible.Indicator
    spacing: Theme.space8
    visible: root.running

    LMPSpinner {
        anchors.verticalCenter: parent.verticalCenter
    }

    LMPText {
        Accessible.ignored: true
        color: Theme.text2
        text: root.text
        visible: root.text !== ""
        width: Math.min(implicitWidth, Theme.dp(480))
    }
}
