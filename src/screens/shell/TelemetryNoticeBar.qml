import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// Asks once whether usage may be told. It stays until it is answered and hides nothing.
Item {
    id: root

    required property TelemetryModel telemetry
    readonly property bool shown: root.telemetry !== null && root.telemetry.asking

    implicitHeight: root.shown ? banner.height + Theme.dp(16) : 0
    height: implicitHeight
    visible: root.shown

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }

    LMPBanner {
        id: banner

        actionText: "同意"
        secondActionText: "不同意"
        text: "可以发送使用情况来帮助改进吗？其中没有你说的话。出错和启动用时总会发送；以后可以在设置里改。"
        width: parent.width - Theme.dp(24)
        x: Theme.dp(12)
        y: Theme.dp(8)
        onAction: root.telemetry.answer(true)
        onSecondAction: root.telemetry.answer(false)
    }
}
