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
    readonly property bool crisisOpen: root.safety.crisisOpen
    /// From when it is asked to open until it is asked to close; whoever asks again meanwhile is heard.
    readonly property bool pageOpen: page.held

    /// Shows the crisis page over everything; closing it leaves the window as it was.
    function openCrisisPage(): void {
        page.open();
    }

    /// What comes while the last card is on its way out opens them again.
    function follow(): void {
        if (root.safety.anyOpen === cards.held)
            return;
        if (root.safety.anyOpen)
            cards.open();
        else
            cards.close();
        root.focusFront();
    }

    /// The crisis page is in front of the cards; whoever opens last would have the keyboard.
    function focusFront(): void {
        if (page.held)
            page.forceActiveFocus();
        else if (cards.held)
            (cards.contentItem as SafetyStack).focusCard();
    }

    Component.onCompleted: root.follow()

    /// The card below is read out like one that comes, and the keyboard comes to none of its buttons either.
    onCrisisOpenChanged: {
        if (!root.crisisOpen && root.safety.anyOpen && cards.opened)
            root.focusFront();
    }

    Connections {
        function onChanged() {
            root.follow();
        }

        function onCrisisShown() {
            if (cards.opened)
                root.focusFront();
        }

        target: root.safety
    }

    LMPModal {
        id: cards

        accessibleName: root.safety.crisisOpen ? root.safety.crisisTitle : root.safety.continuousUseTitle
        height: Math.min(implicitContentHeight, windowHeight - 2 * Theme.space16)
        margins: 0
        width: Math.min(Theme.dp(560) + 2 * Theme.space16, windowWidth)
        z: LMPModal.CareCard

        background: Item {
        }
        contentItem: SafetyStack {
            focus: true
            safety: root.safety
            onEscaped: cards.escaped()
            onRegionsRequested: page.open()
        }

        onEscaped: {
            if (root.safety.crisisOpen)
                (cards.contentItem as SafetyStack).pointOut();
            else
                root.safety.closeContinuousUse();
        }
        onOpened: root.focusFront()
    }

    LMPModal {
        id: page

        accessibleName: root.resources.entry
        height: windowHeight
        margins: 0
        width: windowWidth
        x: 0
        y: 0
        z: LMPModal.CarePage

        background: Item {
        }
        contentItem: CrisisPage {
            focus: true
            resources: root.resources
            onClosed: page.close()
        }

        onClosed: {
            root.resources.close();
            root.focusFront();
        }
    }
}
