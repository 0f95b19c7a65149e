import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// The wait for another service to sign somebody in: what for, the link to go there, and the way out.
Column {
    id: root

    required property SignInModel signIn

    signal shown(Item item)

    /// Takes the keyboard, as it was left: with a ring where it came by key.
    function take(reason: int): void {
        if (cancel.visible)
            cancel.forceActiveFocus(reason);
        root.shown(root);
    }

    function focusReason(): int {
        return cancel.focusReason;
    }

    spacing: Theme.space12
    // The link comes a moment later, and moves what is below it.
    onHeightChanged: root.shown(root)

    LMPBusy {
        text: root.signIn.providerText
    }

    LMPTextField {
        id: link

        helpText: root.signIn.providerOpened ? "浏览器没有打开时用它。" : "浏览器没有自己打开。"
        label: "请在这台电脑的浏览器里打开："
        readOnly: true
        text: root.signIn.providerLink
        visible: root.signIn.providerLink !== ""
        width: parent.width
    }

    Row {
        spacing: Theme.space8

        LMPButton {
            id: cancel

            text: "取消"
            visible: root.signIn.providerCancels
            onClicked: root.signIn.cancelProvider()
        }

        LMPButton {
            text: copied.running ? "已复制" : "复制地址"
            visible: link.visible
            onClicked: {
                link.copyAll();
                copied.restart();
            }

            Timer {
                id: copied

                interval: 2000
            }
        }
    }
}
