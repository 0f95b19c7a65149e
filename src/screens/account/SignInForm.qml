import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// The fields of the chosen way of signing in, each with what is to be said about it.
FocusScope {
    id: root

    required property SignInModel signIn
    readonly property bool registers: root.signIn.mode === SignInModel.EmailRegister
    readonly property bool resets: root.signIn.mode === SignInModel.Reset
    readonly property bool waitsForProvider: root.signIn.providerText !== ""
    property bool invited: false

    /// Something came into being that should be seen.
    signal complained(Item item)

    /// Once the message has its place; the column gives it one later than it appears.
    function complain(): void {
        if (failure.visible && failure.y > 0)
            root.complained(failure);
    }

    function goTo(field: int): void {
        const items = [null, address, address, code, secret.item];
        if (items[field])
            items[field].forceActiveFocus(Qt.TabFocusReason);
    }

    function focusFirst(): void {
        address.forceActiveFocus();
    }

    function submit(): void {
        root.goTo(root.signIn.submit());
    }

    function change(mode: int): void {
        root.signIn.mode = mode;
        root.focusFirst();
    }

    implicitHeight: column.implicitHeight

    Column {
        id: column

        spacing: Theme.space12
        width: parent.width

        LMPText {
            Accessible.role: Accessible.Heading
            kind: LMPText.H2
            text: root.resets ? "重设密码" : root.registers ? "用邮箱注册" : "登录"
            width: parent.width
        }

        LMPSegmented {
            currentIndex: root.signIn.way
            enabled: !root.signIn.submitting
            label: "登录方式"
            model: ["手机验证码", "手机密码", "邮箱"]
            visible: !root.resets && !root.registers
            onActivated: index => root.signIn.chooseWay(index)
        }

        Loader {
            active: root.resets
            visible: root.resets
            Component.onCompleted: setSource("SignInResetWay.qml", {
                signIn: root.signIn
            })
        }

        LMPBanner {
            text: root.signIn.notice
            tone: LMPBanner.Success
            visible: root.signIn.notice !== ""
        }

        Row {
            spacing: Theme.space8
            width: parent.width

            LMPComboBox {
                id: dial

                currentIndex: root.signIn.dialIndex
                enabled: !root.signIn.submitting
                label: "国家或地区"
                model: root.signIn.dialLabels
                visible: root.signIn.asksPhone
                width: Math.min(Theme.dp(164), Math.round(parent.width * 0.44))
                onActivated: index => root.signIn.dialIndex = index
            }

            LMPTextField {
                id: address

                readonly property bool phone: root.signIn.asksPhone

                errorText: address.phone ? root.signIn.phoneMessage : root.signIn.emailMessage
                focus: true
                inputMethodHints: root.signIn.addressHints
                label: address.phone ? "手机号" : "邮箱"
                readOnly: root.signIn.submitting
                text: address.phone ? root.signIn.phone : root.signIn.email
                width: parent.width - (dial.visible ? dial.width + parent.spacing : 0)
                onAccepted: root.submit()
                onTextEdited: {
                    if (address.phone)
                        root.signIn.phone = address.text;
                    else
                        root.signIn.email = address.text;
                }
            }
        }

        Row {
            spacing: Theme.space8
            visible: root.signIn.asksCode
            width: parent.width

            LMPTextField {
                id: code

                errorText: root.signIn.codeMessage
                helpText: root.signIn.codeNotice
                inputMethodHints: root.signIn.codeHints
                label: "验证码"
                readOnly: root.signIn.submitting
                text: root.signIn.code
                width: parent.width - send.width - parent.spacing
                onAccepted: root.submit()
                onTextEdited: root.signIn.code = code.text
            }

            LMPButton {
                id: send

                busy: root.signIn.sending
                enabled: root.signIn.canSendCode || root.signIn.sending
                height: Theme.control
                text: root.signIn.sendText
                width: Theme.dp(124)
                // Beside the box, not beside its label.
                y: labelHeight.height + Theme.space4
                // It rests for a while now, and what comes next is the code.
                onClicked: root.goTo(root.signIn.sendCode() || SignInModel.CodeField)

                LMPText {
                    id: labelHeight

                    Accessible.ignored: true
                    kind: LMPText.Label
                    text: code.label
                    visible: false
                }
            }
        }

        Loader {
            id: secret

            active: root.signIn.asksPassword || root.resets
            visible: secret.active
            width: parent.width
            Component.onCompleted: secret.setSource("SignInSecret.qml", {
                signIn: root.signIn
            })
            onLoaded: (secret.item as SignInSecret).accepted.connect(root.submit)
        }

        Loader {
            id: invite

            active: root.signIn.asksInvite && root.invited
            visible: invite.active
            width: parent.width
            Component.onCompleted: invite.setSource("SignInInvite.qml", {
                signIn: root.signIn
            })
            onLoaded: (invite.item as SignInInvite).accepted.connect(root.submit)
        }

        LMPBanner {
            id: failure

            text: root.signIn.message
            tone: LMPBanner.Danger
            visible: root.signIn.message !== ""
            onVisibleChanged: root.complain()
            onYChanged: root.complain()
        }

        LMPButton {
            busy: root.signIn.submitting && !root.waitsForProvider
            enabled: !root.waitsForProvider
            kind: LMPButton.Primary
            text: root.signIn.submitText
            width: parent.width
            onClicked: root.submit()
        }

        LMPText {
            color: Theme.text2
            kind: LMPText.Caption
            text: "没注册过的手机号，登录时会直接建一个新账号。"
            visible: root.signIn.mode === SignInModel.Sms
            width: parent.width
        }

        SignInLinks {
            invited: root.invited
            signIn: root.signIn
            // A link's own margin, so that its words stand below the others.
            width: parent.width + Theme.space4
            x: -Theme.space4
            onModeChosen: mode => root.change(mode)
            onInviteChosen: {
                root.invited = true;
                (invite.item as SignInInvite).forceActiveFocus(Qt.TabFocusReason);
            }
        }

        Loader {
            id: providers

            active: root.signIn.offersGoogle || root.signIn.offersApple
            visible: providers.active && !root.resets
            width: parent.width
            Component.onCompleted: providers.setSource("ProviderButtons.qml", {
                signIn: root.signIn
            })
            onLoaded: (providers.item as ProviderButtons).shown.connect(root.complained)
        }
    }
}
