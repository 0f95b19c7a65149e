import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// What becomes of accounts that were made earlier.
CenteredPane {
    id: root

    required property CrisisResourcesModel resources
    required property SessionModel session

    signal crisisRequested
    signal finished
    signal privacyRequested

    maximumWidth: 480

    NewAccountNotice {
        session: root.session
        width: parent.width
    }

    LMPCard {
        accessibleName: heading.text
        padding: Theme.space24
        spacing: Theme.space12
        width: parent.width

        LMPText {
            id: heading

            Accessible.role: Accessible.Heading
            kind: LMPText.H2
            text: "关于以前的账号"
            width: parent.width
        }

        LMPText {
            text: root.session.legacyLinked ? "这次的登录已经连到你以前的账号。"
                                            : "如果你以前用手机号或邮箱注册过，请用原来的手机号或邮箱登录，之前的内容都在那个账号里。"
            width: parent.width
        }

        LMPText {
            text: "换一种方式第一次登录，可能会新建一个空账号。这个程序不会替你合并账号，也不会在账号之间搬动内容。"
            width: parent.width
        }

        Flow {
            layoutDirection: Qt.RightToLeft
            spacing: Theme.space8
            width: parent.width

            LMPButton {
                focus: true
                kind: LMPButton.Primary
                text: "知道了"
                onClicked: root.finished()
            }

            LMPButton {
                kind: LMPButton.Quiet
                text: "看隐私说明"
                onClicked: root.privacyRequested()
            }
        }
    }

    CrisisEntry {
        resources: root.resources
        width: parent.width
        onClicked: root.crisisRequested()
    }
}
