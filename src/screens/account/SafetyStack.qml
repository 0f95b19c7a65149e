import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// The cards that are open, the crisis card above the reminder.
FocusScope {
    id: root

    required property SafetyModel safety

    signal escaped
    signal regionsRequested

    /// Brings the keyboard to the first card, to no button of it.
    function focusCard(): void {
        (root.safety.crisisOpen ? crisis : reminder).forceActiveFocus();
    }

    /// Brings it to the button that closes the first card.
    function pointOut(): void {
        (root.safety.crisisOpen ? crisis : reminder).pointOut();
    }

    Accessible.name: root.safety.crisisOpen ? root.safety.crisisTitle : root.safety.continuousUseTitle
    Accessible.role: Accessible.Dialog
    Keys.onEscapePressed: root.escaped()
    implicitHeight: scroll.implicitHeight

    LMPScrollView {
        id: scroll

        anchors.fill: parent
        // Room for the scroll bar beside the cards.
        horizontalPadding: Theme.space16
        spacing: Theme.space12

        SafetyCard {
            id: crisis

            closeText: "关掉这张卡片"
            extraText: "换一个地区看看"
            iconName: "shield"
            text: root.safety.crisisText
            title: root.safety.crisisTitle
            visible: root.safety.crisisOpen
            width: parent.width
            onClosed: root.safety.closeCrisis()
            onExtra: root.regionsRequested()

            LMPText {
                kind: LMPText.Strong
                text: root.safety.crisisWithoutNumbers
                visible: root.safety.crisisWithoutNumbers !== ""
                width: parent.width
            }

            LMPText {
                color: Theme.text2
                text: root.safety.crisisRegionText
                visible: root.safety.crisisRegionText !== ""
                width: parent.width
            }

            Repeater {
                model: root.safety.crisisNumbers

                delegate: CrisisNumberRow {
                    width: parent ? parent.width : 0
                }

                onItemAdded: (index, item) => (item as CrisisNumberRow).dialled.connect(number => root.safety.dial(number))
            }

            LMPText {
                id: undialled

                Accessible.role: Accessible.AlertMessage
                color: Theme.care
                text: root.safety.crisisMessage
                visible: root.safety.crisisMessage !== ""
                width: parent.width
                onTextChanged: {
                    if (undialled.text !== "")
                        Qt.callLater(scroll.show, undialled); // qmllint disable type
                }
            }
        }

        SafetyCard {
            id: reminder

            closeText: "知道了"
            iconName: "clock"
            text: root.safety.continuousUseText
            title: root.safety.continuousUseTitle
            visible: root.safety.continuousUseOpen
            width: parent.width
            onClosed: root.safety.closeContinuousUse()
        }
    }
}
