import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// What is told about the use of the program, and the way to the crisis page.
SettingsPart {
    id: root

    required property TelemetryModel telemetry

    signal crisisRequested

    title: "隐私"

    LMPCard {
        accessibleName: root.title
        spacing: Theme.dp(12)
        width: parent.width

        LMPSwitch {
            checked: root.telemetry.consent
            description: "点了哪些功能、用了多久，其中没有你说的话。关掉以后，还没发出的也会丢掉。"
            enabled: root.telemetry.available
            text: "发送使用情况"
            width: parent.width
            onToggled: root.telemetry.consent = checked
        }

        LMPText {
            color: Theme.text2
            kind: LMPText.Caption
            text: "出错和启动用时这类稳定性信息总会发送，其中没有你说的话。"
            width: parent.width
        }

        LMPSeparator {
        }

        LMPRow {
            Accessible.role: Accessible.Button
            iconName: "care"
            subtitle: "不用登录，也不记录谁看过"
            title: "求助热线"
            twoLine: true
            width: parent.width
            onClicked: root.crisisRequested()
        }
    }
}
