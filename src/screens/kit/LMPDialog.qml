import QtQuick

/// A question with its answers. The first button is the primary one; `dangerIndex` is drawn as what cannot be taken
/// back and never has the keyboard to begin with. Esc gives the answer `escapeIndex`, or, where there is none, only
/// closes and reports `dismissed`.
///
/// One that is `unasked` comes while somebody is at something else: what is pressed in the first half second that it can
/// be seen was meant for that, and the keyboard comes to the answer that changes nothing.
LMPModal {
    id: root

    property list<string> buttons
    default property alias content: extra.data
    property int dangerIndex: -1
    property int escapeIndex: -1
    property string text
    property string title
    property bool unasked: false
    property bool read: false

    /// Whether an answer counts now: neither before it could have been read nor after one was given.
    readonly property bool listens: root.held && (!root.unasked || root.read)

    signal chosen(int index)
    signal dismissed

    function choose(index: int): void {
        if (!root.listens)
            return;
        root.close();
        root.chosen(index);
    }

    /// The answer that has the keyboard to begin with.
    function first(): int {
        if (root.unasked && root.escapeIndex >= 0)
            return root.escapeIndex;
        return root.dangerIndex === 0 && root.buttons.length > 1 ? 1 : 0;
    }

    function prepare(index: int, button: LMPButton): void {
        button.kind = index === root.dangerIndex ? LMPButton.Danger : index === 0 ? LMPButton.Primary : LMPButton.Secondary;
        button.focus = index === root.first();
        button.clicked.connect(() => root.choose(index));
    }

    accessibleDescription: root.text
    accessibleName: root.title
    height: Math.min(implicitHeight, root.windowHeight - 2 * Theme.space16)
    implicitHeight: scroll.contentHeight + answers.height + Theme.space20
    scroller: scroll
    width: Math.min(Theme.dp(440), root.windowWidth - 2 * Theme.space16)

    Timer {
        interval: 500
        running: root.unasked && root.inFront && !root.read
        onTriggered: root.read = true
    }

    LMPScrollView {
        id: scroll

        anchors.bottom: answers.top
        anchors.top: parent.top
        bottomPadding: Theme.space16
        horizontalPadding: Theme.space20
        spacing: Theme.space12
        topPadding: Theme.space20
        width: parent.width

        LMPText {
            Accessible.role: Accessible.Heading
            kind: LMPText.H3
            text: root.title
            visible: root.title !== ""
            width: parent.width
        }

        LMPText {
            color: Theme.text2
            text: root.text
            visible: root.text !== ""
            width: parent.width
        }

        Column {
            id: extra

            spacing: Theme.space8
            visible: extra.children.length > 0
            width: parent.width
        }
    }

    Flow {
        id: answers

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.space20
        layoutDirection: Qt.RightToLeft
        spacing: Theme.space8
        width: parent.width - 2 * Theme.space20
        x: Theme.space20

        Repeater {
            model: root.buttons

            delegate: LMPButton {
                id: answer

                required property string modelData

                text: answer.modelData
            }

            onItemAdded: (index, item) => root.prepare(index, item as LMPButton)
        }
    }

    onAboutToShow: root.read = false
    onEscaped: {
        if (root.escapeIndex >= 0) {
            root.choose(root.escapeIndex);
            return;
        }
        if (!root.listens)
            return;
        root.close();
        root.dismissed();
    }
}
