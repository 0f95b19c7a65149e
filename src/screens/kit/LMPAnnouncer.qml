import QtQuick

/// Tells a screen reader something once, wherever the keyboard is.
///
/// Qt 6.4 has no announcements. What appears in the role of an alert is read out by the readers of all three systems; it
/// goes again, so that nobody meets it on the way.
Item {
    id: root

    property string words

    function announce(text: string): void {
        root.words = "";
        root.words = text;
        gone.restart();
    }

    Accessible.name: root.words
    Accessible.role: Accessible.AlertMessage
    height: 1
    visible: root.words !== ""
    width: 1

    Timer {
        id: gone

        interval: 5000
        onTriggered: root.words = ""
    }
}
