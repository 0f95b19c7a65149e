pragma Singleton
import QtQuick
// The module it is in, by name: a file finds its folder's QML types by itself, but not the C++ ones.
import Lumenpair.Kit

/// Colours, lengths, type and motion of every screen, in light and dark and in every scale.
///
/// One for a program. Screens read; `dark`, `scale` and `reducedMotion` are written by the shell alone, which follows
/// the system and what the user set. Everything else follows those three.
QtObject {
    id: root

    property bool dark: false
    property bool reducedMotion: false
    /// 0.85 to 1.6. Anything else is taken for the nearest of the two.
    property real scale: 1.0
    readonly property real factor: Math.max(0.85, Math.min(1.6, root.scale))

    // Surfaces, from the frame inwards. A state of the pointer is one step of grey.
    readonly property color window: root.dark ? "#17181A" : "#F6F6F4"
    readonly property color surface: root.dark ? "#1F2023" : "#FFFFFF"
    readonly property color sunken: root.dark ? "#131416" : "#EFEFEC"
    readonly property color hover: root.dark ? "#292B2F" : "#E9E9E5"
    /// Lines that only part things. What a person must see to know a control uses borderStrong.
    readonly property color border: root.dark ? "#34363B" : "#DEDED9"
    readonly property color borderStrong: root.dark ? "#74777F" : "#85857C"

    readonly property color text: root.dark ? "#ECEDEE" : "#1C1D1F"
    readonly property color text2: root.dark ? "#B4B7BD" : "#55585E"
    readonly property color text3: root.dark ? "#9A9DA4" : "#62656C"
    readonly property color disabled: root.dark ? "#5E6168" : "#A3A5AA"

    readonly property color accent: root.dark ? "#5B8DEF" : "#2F5FD0"
    /// An alias, because a value given to a name that begins with "on" would be taken for a handler.
    property alias onAccent: onColors.accent
    readonly property color link: root.dark ? "#8FB2F7" : "#2752B8"
    readonly property color ownBubble: root.dark ? "#22304D" : "#E6EDFB"
    readonly property color focus: root.accent

    readonly property color success: root.dark ? "#5CC48A" : "#19703F"
    readonly property color successSoft: root.dark ? "#1B3326" : "#E4F3EA"
    readonly property color warning: root.dark ? "#E0B053" : "#8A5A00"
    readonly property color warningSoft: root.dark ? "#38301C" : "#FBF0DA"
    readonly property color danger: root.dark ? "#F0837A" : "#B8322A"
    readonly property color dangerSoft: root.dark ? "#3E2422" : "#FBE8E6"
    readonly property color care: root.dark ? "#C9A3DB" : "#7A4B8F"
    readonly property color careSoft: root.dark ? "#32263A" : "#F4ECF8"
    readonly property color added: root.dark ? "#B7E4C7" : "#14532D"
    readonly property color addedSoft: root.dark ? "#1B3326" : "#E4F3EA"
    readonly property color removed: root.dark ? "#F5B5AE" : "#7F1D1D"
    readonly property color removedSoft: root.dark ? "#3E2422" : "#FBE8E6"

    readonly property QtObject onColors: QtObject {
        id: onColors

        readonly property color accent: root.dark ? "#0F1420" : "#FFFFFF"
    }

    /// Behind a sheet.
    readonly property color scrim: root.dark ? "#99000000" : "#660F1115"

    readonly property int space2: root.dp(2)
    readonly property int space4: root.dp(4)
    readonly property int space8: root.dp(8)
    readonly property int space12: root.dp(12)
    readonly property int space16: root.dp(16)
    readonly property int space20: root.dp(20)
    readonly property int space24: root.dp(24)
    readonly property int space32: root.dp(32)
    readonly property int space40: root.dp(40)
    readonly property int space56: root.dp(56)

    readonly property int radiusTag: root.dp(4)
    readonly property int radiusControl: root.dp(6)
    readonly property int radiusRow: root.dp(8)
    readonly property int radiusCard: root.dp(10)
    readonly property int radiusComposer: root.dp(12)
    readonly property int radiusPill: 999

    /// The height of a button or a field, of a compact one, and the least that can be hit.
    readonly property int control: root.dp(32)
    readonly property int target: Math.max(28, root.dp(28))

    /// Milliseconds of a change of state; none where the system asks for less motion.
    readonly property int motion: root.reducedMotion ? 0 : 120
    readonly property int motionSlow: root.reducedMotion ? 0 : 180

    readonly property string fontFamily: LMPFonts.family
    readonly property string monoFamily: LMPFonts.monoFamily

    /// A length of the design, in the pixels of the chosen scale.
    function dp(length: real): int {
        return Math.round(length * root.factor);
    }

    /// A size of type in the chosen scale, never below 12.
    function sp(size: real): int {
        return Math.max(12, Math.round(size * root.factor));
    }

    /// `color`, as a light veil over whatever is behind it.
    function veil(color: color, opacity: real): color {
        return Qt.rgba(color.r, color.g, color.b, opacity);
    }
}
