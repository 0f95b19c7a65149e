import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// What is shown until it is known who is there. Blank at first, so that a fast start does not flash.
CenteredPane {
    id: root

    required property CrisisResourcesModel resources
    required property SessionModel session
    /// How long it stays blank, in milliseconds.
    property int quietFor: 500
    property bool quiet: true
    readonly property bool shown: !root.quiet || root.session.waitingOnKeychain || root.session.verificationFailed

    signal crisisRequested

    usualHeight: 200

    Timer {
        interval: root.quietFor
        running: true
        onTriggered: root.quiet = false
    }

    LMPBusy {
        anchors.horizontalCenter: parent ? parent.horizontalCenter : undefined
        running: root.shown && !root.session.verificationFailed
        text: root.session.waitingText
    }

    LMPText {
        color: Theme.text2
        horizontalAlignment: Text.AlignHCenter
        text: "系统可能正弹出钥匙串的密码框，请到那里允许。\n最多等 20 秒；之后先按未登录处理，存着的登录信息不动。"
        visible: root.session.waitingOnKeychain
        width: parent.width
    }

    LMPCard {
        accessibleName: heading.text
        spacing: Theme.space12
        visible: root.session.verificationFailed
        width: parent.width

        LMPText {
            id: heading

            Accessible.role: Accessible.Heading
            kind: LMPText.H3
            text: "暂时没能核实登录"
            width: parent.width
        }

        LMPText {
            Accessible.role: Accessible.AlertMessage
            text: root.session.verificationMessage
            width: parent.width
        }

        LMPText {
            color: Theme.text2
            text: "登录信息还在，可以再试一次。"
            width: parent.width
        }

        Flow {
            layoutDirection: Qt.RightToLeft
            spacing: Theme.space8
            width: parent.width

            LMPButton {
                id: retry

                focus: true
                kind: LMPButton.Primary
                text: "重试"
                onClicked: root.session.retryVerification()
                onVisibleChanged: {
                    if (retry.visible)
                        retry.forceActiveFocus();
                }
            }

            LMPButton {
                text: "退出登录"
                onClicked: question.open()
            }
        }
    }

    CrisisEntry {
        // As wide as the twenty letters of its second line, so that it stands in the middle.
        readonly property real need: Theme.dp(48) + Theme.sp(12) * 20

        anchors.horizontalCenter: parent ? parent.horizontalCenter : undefined
        resources: root.resources
        visible: root.shown
        width: parent ? (root.session.verificationFailed ? parent.width : Math.min(parent.width, need)) : 0
        onClicked: root.crisisRequested()
    }

    SignOutDialog {
        id: question

        session: root.session
    }
}
