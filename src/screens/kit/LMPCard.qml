import QtQuick

/// A framed piece of a page; its children stand below each other (`width: parent.width`). A stripe at the left tells an
/// approval, a danger and care from everything else, beside what the words say.
Rectangle {
    id: root

    enum Stripe {
        None,
        Approval,
        Danger,
        Care
    }

    /// What a screen reader calls the group; usually the card's heading.
    property string accessibleName
    default property alias content: column.data
    property real padding: Theme.space16
    property alias spacing: column.spacing
    property int stripe: LMPCard.None

    function stripeColor(stripe: int): color {
        switch (stripe) {
        case LMPCard.Approval:
            return Theme.warning;
        case LMPCard.Danger:
            return Theme.danger;
        case LMPCard.Care:
            return Theme.care;
        }
        return "transparent";
    }

    Accessible.name: root.accessibleName
    Accessible.role: Accessible.Grouping
    border.color: Theme.border
    border.width: 1
    color: Theme.surface
    implicitHeight: column.implicitHeight + 2 * root.padding
    implicitWidth: column.implicitWidth + 2 * root.padding
    radius: Theme.radiusCard

    // Inside the frame and short of its corners, so that nothing has to be cut to a round shape.
    Rectangle {
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.margins: 1
        anchors.bottomMargin: root.radius
        anchors.topMargin: root.radius
        anchors.top: parent.top
        color: root.stripeColor(root.stripe)
        visible: root.stripe !== LMPCard.None
        width: 3
    }

    Column {
        id: column

        spacing: Theme.space8
        width: root.width - 2 * root.padding
        x: root.padding
        y: root.padding
    }
}
