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

    function fieldOf(field: int): Item {
        switch (field) {
        case SignInModel.PhoneField:
            return phone;
        case SignInModel.EmailField:
            return email.item as Item;
        case SignInModel.CodeField:
            return code;
        case SignInModel.PasswordField:
            return (root.resets ? newPassword.item : password.item) as Item;
        }
        return null;
    }

    function goTo(field: int): void {
        const item = root.fieldOf(field);
        if (item)
            item.forceActiveFocus(Qt.TabFocusReason);
    }

    function focusFirst(): void {
        const item = root.fieldOf(root.signIn.asksPhone ? SignInModel.PhoneField : SignInModel.EmailField);
        if (item)
            item.forceActiveFocus();
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

        LMPSegmented {
            currentIndex: root.signIn.resetByEmail ? 1 : 0
            enabled: !root.signIn.submitting
            label: "用什么重设"
            model: ["用手机号", "用邮箱"]
            visible: root.resets
            onActivated: index => root.signIn.resetByEmail = index === 1
        }

        LMPBanner {
            text: root.signIn.notice
            tone: LMPBanner.Success
            visible: root.signIn.notice !== ""
        }

        Row {
            spacing: Theme.space8
            visible: root.signIn.asksPhone
            width: parent.width

            LMPComboBox {
                id: dial

                currentIndex: root.signIn.dialIndex
                enabled: !root.signIn.submitting
                label: "国家或地区"
                model: root.signIn.dialLabels
                width: Math.min(Theme.dp(164), Math.round(parent.width * 0.44))
                onActivated: index => root.signIn.dialIndex = index
            }

            LMPTextField {
                id: phone

                errorText: root.signIn.phoneMessage
                focus: root.signIn.asksPhone
                inputMethodHints: Qt.ImhDialableCharactersOnly
                label: "手机号"
                readOnly: root.signIn.submitting
                text: root.signIn.phone
                width: parent.width - dial.width - parent.spacing
                onAccepted: root.submit()
                onTextEdited: root.signIn.phone = phone.text
            }
        }

        Loader {
            id: email

            active: !root.signIn.asksPhone
            visible: active
            width: parent.width

            sourceComponent: LMPTextField {
                id: emailField

                errorText: root.signIn.emailMessage
                focus: true
                inputMethodHints: Qt.ImhEmailCharactersOnly
                label: "邮箱"
                readOnly: root.signIn.submitting
                text: root.signIn.email
                onAccepted: root.submit()
                onTextEdited: root.signIn.email = emailField.text
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
                inputMethodHints: Qt.ImhPreferNumbers | Qt.ImhNoPredictiveText
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
                onClicked: root.goTo(root.signIn.sendCode())

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
            id: password

            active: root.signIn.asksPassword
            visible: active
            width: parent.width

            sourceComponent: LMPTextField {
                id: passwordField

                errorText: root.signIn.passwordMessage
                label: root.registers ? "设一个密码" : "密码"
                readOnly: root.signIn.submitting
                secret: true
                text: root.signIn.password
                onAccepted: root.submit()
                onTextEdited: root.signIn.password = passwordField.text
            }
        }

        Loader {
            id: newPassword

            active: root.resets
            visible: active
            width: parent.width

            sourceComponent: LMPTextField {
                id: newPasswordField

                errorText: root.signIn.passwordMessage
                label: "新密码"
                readOnly: root.signIn.submitting
                secret: true
                text: root.signIn.newPassword
                onAccepted: root.submit()
                onTextEdited: root.signIn.newPassword = newPasswordField.text
            }
        }

        Loader {
            active: root.signIn.asksInvite && (root.invited || root.signIn.inviteCode !== "")
            visible: active
            width: parent.width

            sourceComponent: LMPTextField {
                id: inviteField

                helpText: "没有就不用填。"
                label: "邀请码"
                readOnly: root.signIn.submitting
                text: root.signIn.inviteCode
                onAccepted: root.submit()
                onTextEdited: root.signIn.inviteCode = inviteField.text
                Component.onCompleted: {
                    if (root.invited)
                        inviteField.forceActiveFocus(Qt.TabFocusReason);
                }
            }
        }

        LMPBanner {
            text: root.signIn.message
            tone: LMPBanner.Danger
            visible: root.signIn.message !== ""
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

        Flow {
            spacing: Theme.space8
            width: parent.width + Theme.space4
            // A link's own margin, so that its words stand below the others.
            x: -Theme.space4

            LMPButton {
                enabled: !root.signIn.submitting
                kind: LMPButton.Link
                text: "注册新账号"
                visible: root.signIn.mode === SignInModel.EmailSignIn
                onClicked: root.change(SignInModel.EmailRegister)
            }

            LMPButton {
                enabled: !root.signIn.submitting
                kind: LMPButton.Link
                text: "忘了密码"
                visible: root.signIn.mode === SignInModel.Password || root.signIn.mode === SignInModel.EmailSignIn
                onClicked: {
                    root.signIn.resetByEmail = root.signIn.mode === SignInModel.EmailSignIn;
                    root.change(SignInModel.Reset);
                }
            }

            LMPButton {
                enabled: !root.signIn.submitting
                kind: LMPButton.Link
                text: "有邀请码"
                visible: root.signIn.asksInvite && !root.invited && root.signIn.inviteCode === ""
                onClicked: root.invited = true
            }

            LMPButton {
                enabled: !root.signIn.submitting
                kind: LMPButton.Link
                text: "返回登录"
                visible: root.resets || root.registers
                onClicked: root.change(root.registers || root.signIn.resetByEmail ? SignInModel.EmailSignIn : SignInModel.Password)
            }
        }

        Loader {
            active: root.signIn.offersGoogle || root.signIn.offersApple
            visible: active && !root.resets
            width: parent.width

            sourceComponent: ProviderButtons {
                signIn: root.signIn
            }
        }
    }
}
