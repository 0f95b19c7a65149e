import Lumenpair.Account
import Lumenpair.Kit

/// Where the code for a new password goes.
LMPSegmented {
    id: root

    required property SignInModel signIn

    currentIndex: root.signIn.resetByEmail ? 1 : 0
    enabled: !root.signIn.submitting
    label: "用什么重设"
    model: ["用手机号", "用邮箱"]
    onActivated: index => root.signIn.resetByEmail = index === 1
}
