import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// Theme and scale.
SettingsPart {
    id: root

    required property AppearanceModel appearance

    title: "外观"

    LMPCard {
        accessibleName: root.title
        spacing: Theme.dp(16)
        width: parent.width

        SettingsLine {
            text: "主题"
            width: parent.width

            LMPSegmented {
                currentIndex: root.appearance.choice
                label: "主题"
                model: ["跟随系统", "浅色", "深色"]
                onActivated: index => root.appearance.choice = index
            }
        }

        SettingsLine {
            text: "界面大小"
            width: parent.width

            LMPSegmented {
                currentIndex: root.appearance.scaleStep
                label: "界面大小"
                model: root.appearance.scaleTexts
                onActivated: index => root.appearance.scaleStep = index
            }
        }

        LMPText {
            color: Theme.text2
            kind: LMPText.Caption
            text: root.appearance.reducedMotion ? "系统要求少用动画，这里就不用。" : "动画跟随系统的设置。"
            width: parent.width
        }
    }
}
