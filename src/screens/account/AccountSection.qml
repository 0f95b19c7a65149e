import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// The account's part of the settings: who is signed in, the handle, and the way out.
Column {
    id: root

    required property SessionModel session

    spacing: Theme.space12

    LMPCard {
        accessibleName: "账号"
        spacing: Theme.space12
        width: parent.width

        Row {
            spacing: Theme.space12
            width: parent.width

            LMPAvatar {
                id: avatar

                name: root.session.userName
                size: 40
            }

            Column {
                anchors.verticalCenter: parent.verticalCenter
                width: parent.width - avatar.width - parent.spacing

                LMPText {
                    kind: LMPText.H3
                    text: root.session.userName
                    width: parent.width
                }

                LMPText {
                    color: Theme.text2
                    text: root.session.userDetail
                    visible: root.session.userDetail !== ""
                    width: parent.width
                }
            }
        }

        AccountFact {
            label: "编号"
            value: root.session.userId
            width: parent.width
        }

        AccountFact {
            label: "主页名"
            value: root.session.userHandle === "" ? "还没有" : root.session.userHandle
            width: parent.width

            LMPButton {
                text: root.session.userHandle === "" ? "取一个" : "换一个"
                onClicked: sheet.open()
            }
        }

        LMPSeparator {
        }

        Flow {
            layoutDirection: Qt.RightToLeft
            spacing: Theme.space8
            width: parent.width

            LMPButton {
                busy: root.session.signingOut
                iconName: "logout"
                text: "退出登录"
                onClicked: question.open()
            }
        }
    }

    SignOutDialog {
        id: question

        session: root.session
    }

    HandleSheet {
        id: sheet

        handle: root.session.handle
    }
}
