import QtQuick

/// Tells a screen reader, once, that a reply has ended and what it says.
///
/// Qt 6.4 has no announcements. An item of the role of an alert that appears with a name is read out by the readers of
/// all three systems without the focus moving; it goes away again so that nobody meets it on the way.
Item {
    id: root

    property string words: ""

    function announce(text: string) {
        root.words = "";
        root.words = text;
        gone.restart();
    }

    Accessible.name: root.words
    Accessible.role: Accessible.AlertMessage
    height: 1
    visible: root.words.length > 0
    width: 1

    Timer {
        id: gone

        interval: 5000

        onTriggered: root.words = ""
    }
}
