import QtQuick

/// Three dots that take turns: something is under way and nobody knows for how long. They stand still where less motion
/// is asked for, and nothing moves that is not shown.
Row {
    id: root

    property color color: Theme.text2
    property real dot: 5
    property int phase: 0

    function strength(place: int, phase: int): real {
        return Theme.reducedMotion || place === phase ? 1 : 0.35;
    }

    Accessible.ignored: true
    spacing: Theme.space4

    Rectangle {
        color: root.color
        height: Theme.dp(root.dot)
        opacity: root.strength(0, root.phase)
        radius: height / 2
        width: height
    }

    Rectangle {
        color: root.color
        height: Theme.dp(root.dot)
        opacity: root.strength(1, root.phase)
        radius: height / 2
        width: height
    }

    Rectangle {
        color: root.color
        height: Theme.dp(root.dot)
        opacity: root.strength(2, root.phase)
        radius: height / 2
        width: height
    }

    Timer {
        interval: 260
        repeat: true
        running: root.visible && !Theme.reducedMotion
        onTriggered: root.phase = (root.phase + 1) % 3
    }
}
