import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// Says that a provider made a new account, and what to do where an older one was meant. Takes no room while there is
/// nothing to say.
LMPCard {
    id: root

    required property SessionModel session

    /// It is about to go.
    signal closing

    accessibleName: root.session.newAccountTitle
    height: visible ? implicitHeight : 0
    visible: root.session.newAccountTitle !== ""

    LMPText {
        Accessible.role: Accessible.AlertMessage
        kind: LMPText.Strong
        text: root.session.newAccountTitle
        width: parent.width
    }

    LMPText {
        text: root.session.newAccountAdvice
        width: parent.width
    }

    Flow {
        layoutDirection: Qt.RightToLeft
        spacing: Theme.space8
        width: parent.width

        LMPButton {
            text: root.session.newAccountClose
            onClicked: {
                root.closing();
                root.session.closeNewAccountNotice();
            }
        }
    }
}
