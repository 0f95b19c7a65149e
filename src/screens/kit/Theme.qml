pragma Singleton
import QtQuick

/// Colours, lengths and type of every screen; only the shell writes to it.
QtObject {
    id: root

    property bool dark: false
    property bool reducedMotion: false
    property real scale: 1.0

    readonly property color window: root.dark ? "#17181A" : "#F6F6F4"
    readonly property color surface: root.dark ? "#1F2023" : "#FFFFFF"
    readonly property color text: root.dark ? "#ECEDEE" : "#1C1D1F"

    /// A length of the design, in the pixels of the chosen scale.
    function dp(length: real): real {
        return Math.round(length * root.scale);
    }
}
