import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// The other services a person can sign in with, where this deployment has them, and the wait for one of them.
Column {
    id: root

    required property SignInModel signIn
    readonly property bool waiting: root.signIn.providerText !== ""
    property bool waited: false
    property int reason: Qt.OtherFocusReason // qmllint disable type

    /// What came into sight, and should be seen.
    signal shown(Item item)

    function wait(): ProviderWait {
        return page.item as ProviderWait;
    }

    /// The keyboard was at the button that has gone with the wait.
    function resume(): void {
        if (!root.waited || root.waiting || !google.visible || !google.enabled)
            return;
        root.waited = false;
        const wait = root.wait();
        google.forceActiveFocus(wait ? wait.focusReason() : root.reason);
    }

    function follow(): void {
        if (root.waiting) {
            root.waited = true;
            page.setSource("ProviderWait.qml", {
                signIn: root.signIn
            });
        } else if (page.item) {
            root.reason = root.wait().focusReason();
            page.setSource("");
        }
    }

    spacing: Theme.space12
    onWaitingChanged: root.follow()

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

    Loader {
        id: page

        visible: page.status === Loader.Ready
        width: parent.width
        onLoaded: {
            root.wait().shown.connect(root.shown);
            root.wait().take(google.focusReason);
        }
    }
}
