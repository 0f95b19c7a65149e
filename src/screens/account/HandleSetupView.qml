import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// Choosing the handle of a new account. It may wait.
CenteredPane {
    id: root

    required property CrisisResourcesModel resources
    required property SessionModel session
    readonly property HandleModel handle: root.session.handle
    readonly property bool saved: root.handle.savedText !== ""

    signal crisisRequested
    signal finished

    Component.onDestruction: {
        if (root.handle)
            root.handle.close();
    }
    Component.onCompleted: {
        root.handle.open();
        form.focusFirst();
    }

    NewAccountNotice {
        session: root.session
        width: parent.width
    }

    LMPCard {
        accessibleName: heading.text
        padding: Theme.space20
        spacing: Theme.space12
        width: parent.width

        LMPText {
            id: heading

            Accessible.role: Accessible.Heading
            kind: LMPText.H2
            text: root.saved ? "好了" : "取一个主页名"
            width: parent.width
        }

        LMPText {
            color: Theme.text2
            text: root.saved ? root.handle.savedText : "别人用它找到你。现在不取也行，以后在设置里取。"
            width: parent.width
        }

        HandleForm {
            id: form

            handle: root.handle
            visible: !root.saved
            width: parent.width
            onSubmitted: root.handle.save()
        }

        Flow {
            layoutDirection: Qt.RightToLeft
            spacing: Theme.space8
            width: parent.width

            LMPButton {
                id: next

                busy: root.handle.saving
                enabled: root.saved || root.handle.canSave || root.handle.saving
                kind: LMPButton.Primary
                text: root.saved ? "继续" : "保存"
                onClicked: {
                    if (root.saved)
                        root.finished();
                    else
                        root.handle.save();
                }
            }

            LMPButton {
                kind: LMPButton.Quiet
                text: "以后再说"
                visible: !root.saved && !root.handle.saving
                onClicked: root.finished()
            }
        }
    }

    CrisisEntry {
        resources: root.resources
        width: parent.width
        onClicked: root.crisisRequested()
    }

    onSavedChanged: {
        if (root.saved)
            next.forceActiveFocus();
    }
}
