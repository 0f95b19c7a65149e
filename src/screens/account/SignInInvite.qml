import Lumenpair.Account
import Lumenpair.Kit

/// The code of whoever has invited the person.
LMPTextField {
    id: root

    required property SignInModel signIn

    helpText: "没有就不用填。"
    label: "邀请码"
    readOnly: root.signIn.submitting
    text: root.signIn.inviteCode
    onTextEdited: root.signIn.inviteCode = root.text
}
