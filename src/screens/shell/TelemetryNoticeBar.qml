import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// Asks once whether usage may be told. It stays until it is answered and hides nothing.
FocusScope {
    id: root

    required property TelemetryModel telemetry
    readonly property bool shown: root.telemetry !== null && root.telemetry.asking

    /// It is about to go, with the keyboard in it.
    signal leaving

    /// Nobody has agreed to what they could not have read: keys typed ahead may come to this bar as it appears.
    function answer(agreed: bool): void {
        if (unread.running)
            return;
        if (root.activeFocus)
            root.leaving();
        root.telemetry.answer(agreed);
    }

    implicitHeight: root.shown ? banner.height + Theme.dp(16) : 0
    height: implicitHeight
    visible: root.shown

    Timer {
        id: unread

        interval: 500
        running: root.visible
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }

    LMPBanner {
        id: banner

        actionText: "同意"
        secondActionText: "不同意"
        text: "可以发送使用情况来帮助改进吗？其中没有你说的话，以后可以在设置里改。出错和启动用时总会发送。"
        width: parent.width - Theme.dp(24)
        x: Theme.dp(12)
        y: Theme.dp(8)
        onAction: root.answer(true)
        onSecondAction: root.answer(false)
    }
}
