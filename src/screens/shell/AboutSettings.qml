import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// Which build this is, whether there is a newer one, and whose work it stands on.
SettingsPart {
    id: root

    required property UpdateChecker updates

    title: "更新与关于"

    LMPCard {
        accessibleName: root.title
        spacing: Theme.dp(12)
        width: parent.width

        SettingsLine {
            text: "Lumenpair " + Qt.application.version
            width: parent.width

            LMPButton {
                busy: root.updates.checking
                iconName: "download"
                text: "检查更新"
                onClicked: root.updates.check(true)
            }
        }

        LMPSeparator {
        }

        LMPText {
            color: Theme.text2
            kind: LMPText.Caption
            text: "用到的自由软件：Qt（LGPL-3.0）、QCoro（MIT）、QtKeychain（BSD-3-Clause）、Boost（BSL-1.0）、MD4C（MIT）、ICU（Unicode-3.0）、RE2（BSD-3-Clause）、SQLite（公有领域）、SQLiteCpp（MIT）、CLI11（BSD-3-Clause）、libedit（BSD-3-Clause）、cpp-httplib（MIT）、OpenSSL（Apache-2.0）。各自的许可证文本随它们的软件包或本程序的软件包提供。"
            width: parent.width
        }
    }
}
