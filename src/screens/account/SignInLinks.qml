import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// What else can be done from the chosen way of signing in.
Flow {
    id: root

    property bool invited: false
    required property SignInModel signIn
    readonly property bool elsewhere: root.signIn.mode === SignInModel.Reset || root.signIn.mode === SignInModel.EmailRegister

    signal inviteChosen
    signal modeChosen(int mode)

    function reset(): void {
        root.signIn.resetByEmail = root.signIn.mode === SignInModel.EmailSignIn;
        root.modeChosen(SignInModel.Reset);
    }

    function back(): void {
        const byEmail = root.signIn.mode === SignInModel.EmailRegister || root.signIn.resetByEmail;
        root.modeChosen(byEmail ? SignInModel.EmailSignIn : SignInModel.Password);
    }

    enabled: !root.signIn.submitting
    spacing: Theme.space8

    SignInLink {
        shown: root.signIn.mode === SignInModel.EmailSignIn
        text: "注册新账号"
        onClicked: root.modeChosen(SignInModel.EmailRegister)
    }

    SignInLink {
        shown: root.signIn.mode === SignInModel.Password || root.signIn.mode === SignInModel.EmailSignIn
        text: "忘了密码"
        onClicked: root.reset()
    }

    SignInLink {
        shown: root.signIn.asksInvite && !root.invited
        text: "有邀请码"
        onClicked: root.inviteChosen()
    }

    SignInLink {
        shown: root.elsewhere
        text: "返回登录"
        onClicked: root.back()
    }
}
