import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// The safety cards and the crisis page, over whatever the window shows, sheets included. One for each window.
///
/// A card goes when the person says so and not before. The keyboard comes to the card, not to one of its buttons: who
/// was typing must neither call anybody nor wave the card away. Esc closes the reminder, never the crisis card.
Item {
    id: root

    required property CrisisResourcesModel resources
    required property SafetyModel safety
    readonly property bool cardsOpen: cards.visible
    readonly property bool pageOpen: page.visible

    /// Shows the crisis page over everything; closing it leaves the window as it was.
    function openCrisisPage(): void {
        page.open();
    }

    function follow(): void {
        if (root.safety.anyOpen === cards.visible)
            return;
        if (root.safety.anyOpen)
            cards.open();
        else
            cards.close();
    }

    Component.onCompleted: root.follow()

    Connections {
        function onChanged() {
            root.follow();
        }

        function onCrisisShown() {
            if (cards.opened && !page.visible)
                crisis.forceActiveFocus();
        }

        target: root.safety
    }

    LMPModal {
        id: cards

        margins: 0
        accessibleName: root.safety.crisisOpen ? root.safety.crisisTitle : root.safety.continuousUseTitle
        height: Math.min(scroll.implicitHeight, windowHeight - 2 * Theme.space16)
        width: Math.min(Theme.dp(560) + 2 * scroll.horizontalPadding, windowWidth)
        z: 1000

        background: Item {
        }
        contentItem: FocusScope {
            Accessible.name: cards.accessibleName
            Accessible.role: Accessible.Dialog
            Keys.onEscapePressed: cards.escaped()
            focus: true

            LMPScrollView {
                id: scroll

                anchors.fill: parent
                // Room for the scroll bar beside the cards.
                horizontalPadding: Theme.space16
                spacing: Theme.space12

                SafetyCard {
                    id: crisis

                    closeText: "关掉这张卡片"
                    focus: root.safety.crisisOpen
                    iconName: "shield"
                    text: root.safety.crisisText
                    title: root.safety.crisisTitle
                    visible: root.safety.crisisOpen
                    width: parent.width
                    onClosed: root.safety.closeCrisis()

                    extras: [
                        LMPButton {
                            kind: LMPButton.Quiet
                            text: "换一个地区看看"
                            onClicked: page.open()
                        }
                    ]

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
                            id: number

                            width: parent ? parent.width : 0
                            onDialled: root.safety.dial(number.phone)
                        }
                    }

                    LMPText {
                        Accessible.role: Accessible.AlertMessage
                        color: Theme.care
                        text: root.safety.crisisMessage
                        visible: root.safety.crisisMessage !== ""
                        width: parent.width
                    }
                }

                SafetyCard {
                    id: reminder

                    closeText: "知道了"
                    focus: !root.safety.crisisOpen
                    iconName: "clock"
                    text: root.safety.continuousUseText
                    title: root.safety.continuousUseTitle
                    visible: root.safety.continuousUseOpen
                    width: parent.width
                    onClosed: root.safety.closeContinuousUse()
                }
            }
        }

        // A sheet that opens meanwhile may not take the keyboard from under the card.
        onActiveFocusChanged: {
            if (!cards.activeFocus && cards.opened && !page.visible)
                Qt.callLater(cards.forceActiveFocus);
        }
        onEscaped: {
            if (root.safety.crisisOpen)
                crisis.pointOut();
            else
                root.safety.closeContinuousUse();
        }
        onOpened: (root.safety.crisisOpen ? crisis : reminder).forceActiveFocus()
    }

    LMPModal {
        id: page

        accessibleName: root.resources.entry
        height: windowHeight
        margins: 0
        width: windowWidth
        x: 0
        y: 0
        z: 1001

        background: Rectangle {
            color: Theme.surface
        }
        contentItem: FocusScope {
            focus: true

            Loader {
                active: page.visible
                anchors.fill: parent
                focus: true

                sourceComponent: CrisisPage {
                    focus: true
                    resources: root.resources
                    onClosed: page.close()
                }
            }
        }

        onClosed: root.resources.close()
    }
}
