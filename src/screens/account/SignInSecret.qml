import Lumenpair.Account
import Lumenpair.Kit

/// The password: the one that is known, or the one that shall be.
LMPTextField {
    id: root

    required property SignInModel signIn
    readonly property bool resets: root.signIn.mode === SignInModel.Reset

    errorText: root.signIn.passwordMessage
    label: root.resets ? "新密码" : root.signIn.mode === SignInModel.EmailRegister ? "设一个密码" : "密码"
    readOnly: root.signIn.submitting
    secret: true
    text: root.resets ? root.signIn.newPassword : root.signIn.password
    onTextEdited: {
        if (root.resets)
            root.signIn.newPassword = root.text;
        else
            root.signIn.password = root.text;
    }
}
