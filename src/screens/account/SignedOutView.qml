import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// Signing in, and the guest trial beside it.
FocusScope {
    id: root

    required property CrisisResourcesModel resources
    required property SessionModel session
    property bool trying: false

    signal crisisRequested

    function back(): void {
        root.trying = false;
        form.focusFirst();
    }

    function register(): void {
        root.session.signIn.mode = SignInModel.Sms;
        root.back();
    }

    Component.onCompleted: form.focusFirst()

    CenteredPane {
        id: pane

        anchors.bottomMargin: crisis.height + Theme.space8
        anchors.fill: parent
        usualHeight: 540
        visible: !root.trying

        Column {
            spacing: Theme.space4
            width: parent.width

            LMPText {
                Accessible.role: Accessible.Heading
                kind: LMPText.H1
                text: "Lumenpair"
                width: parent.width
            }

            LMPText {
                color: Theme.text2
                text: "登录之后，接着和你的分身说话。"
                width: parent.width
            }
        }

        LMPBanner {
            closable: true
            text: root.session.notice
            tone: LMPBanner.Warning
            visible: root.session.notice !== ""
            onClosed: root.session.closeNotice()
        }

        LMPCard {
            accessibleName: "登录"
            padding: Theme.space20
            width: parent.width

            SignInForm {
                id: form

                focus: true
                signIn: root.session.signIn
                width: parent.width
                onComplained: item => pane.show(item)
            }
        }

        LMPRow {
            Accessible.role: Accessible.Button
            iconName: "chat"
            subtitle: "不用账号，聊几轮看看"
            title: "先试聊"
            twoLine: true
            width: parent.width
            onClicked: root.trying = true
        }
    }

    Rectangle {
        anchors.bottom: pane.bottom
        color: Theme.border
        height: 1
        visible: pane.visible && pane.overflows
        width: root.width
    }

    // Below the rest where that has room, else at the bottom: nobody has to scroll for it.
    CrisisEntry {
        id: crisis

        anchors.horizontalCenter: parent.horizontalCenter
        resources: root.resources
        visible: pane.visible
        width: Math.min(Theme.dp(pane.maximumWidth), root.width - 2 * Theme.space24)
        y: Math.min(pane.contentBottom, root.height - height - Theme.space8) + Theme.space4
        onClicked: root.crisisRequested()
    }

    Loader {
        id: trial

        active: root.trying
        anchors.fill: parent
        focus: root.trying
        Component.onCompleted: trial.setSource("GuestTrialView.qml", {
            guest: root.session.guest,
            resources: root.resources
        })
        onLoaded: {
            const page = trial.item as GuestTrialView;
            page.closed.connect(root.back);
            page.crisisRequested.connect(root.crisisRequested);
            page.registerRequested.connect(root.register);
            page.forceActiveFocus();
        }
    }
}
