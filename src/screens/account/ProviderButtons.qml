import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// The other services a person can sign in with, where this deployment has them, and the wait for one of them.
Column {
    id: root

    required property SignInModel signIn
    readonly property bool waiting: root.signIn.providerText !== ""
    property bool waited: false

    /// The keyboard was at the button that has gone with the wait.
    function resume(): void {
        if (!root.waited || root.waiting || !google.visible || !google.enabled)
            return;
        root.waited = false;
        google.forceActiveFocus(cancel.focusReason);
    }

    spacing: Theme.space12
    onWaitingChanged: {
        if (root.waiting)
            root.waited = true;
    }

    LMPSeparator {
    }

    LMPButton {
        id: google

        enabled: !root.signIn.submitting
        text: "用 Google 登录"
        visible: root.signIn.offersGoogle && !root.waiting
        width: parent.width
        onClicked: root.signIn.signInWithGoogle()
        onEnabledChanged: root.resume()
        onVisibleChanged: root.resume()
    }

    LMPButton {
        enabled: !root.signIn.submitting
        text: "用 Apple 登录"
        visible: root.signIn.offersApple && !root.waiting
        width: parent.width
        onClicked: root.signIn.signInWithApple()
    }

    LMPBusy {
        running: root.waiting
        text: root.signIn.providerText
    }

    LMPTextField {
        helpText: root.signIn.providerOpened ? "浏览器没有打开时用它。" : "浏览器没有自己打开。"
        label: "请在这台电脑的浏览器里打开："
        readOnly: true
        text: root.signIn.providerLink
        visible: root.waiting && root.signIn.providerLink !== ""
        width: parent.width
    }

    LMPButton {
        id: cancel

        text: "取消"
        visible: root.waiting && root.signIn.providerCancels
        onClicked: root.signIn.cancelProvider()
        onVisibleChanged: {
            if (cancel.visible)
                cancel.forceActiveFocus(google.focusReason);
        }
    }
}
