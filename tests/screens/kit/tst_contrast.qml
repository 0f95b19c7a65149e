import QtQuick
import QtTest
import Lumenpair.Kit

/// Every pair of colours that meets somewhere: text at least 4.5 : 1, lines and marks that mean something at least 3 : 1.
TestCase {
    id: root

    name: "contrast"

    readonly property var pages: ["window", "surface", "sunken", "hover", "ownBubble"]
    readonly property var softs: ["successSoft", "warningSoft", "dangerSoft", "careSoft"]

    function channel(value: real): real {
        return value <= 0.04045 ? value / 12.92 : Math.pow((value + 0.055) / 1.055, 2.4);
    }

    function luminance(color: color): real {
        return 0.2126 * root.channel(color.r) + 0.7152 * root.channel(color.g) + 0.0722 * root.channel(color.b);
    }

    function ratio(one: color, other: color): real {
        const a = root.luminance(one);
        const b = root.luminance(other);
        return (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
    }

    function init_data() {
        return [{
                "tag": "light",
                "dark": false
            }, {
                "tag": "dark",
                "dark": true
            }];
    }

    function cleanup() {
        Theme.dark = false;
    }

    function expect(ink: string, ground: string, least: real) {
        verify(Theme[ground] !== undefined && Theme[ink] !== undefined, ink + " on " + ground + " exist");
        const is = root.ratio(Theme[ink], Theme[ground]);
        verify(is >= least, `${ink} on ${ground}${Theme.dark ? ", dark" : ""}: ${is.toFixed(2)}`);
    }

    function test_pairs(look) {
        Theme.dark = look.dark;
        fuzzyCompare(root.ratio(Qt.rgba(0, 0, 0, 1), Qt.rgba(1, 1, 1, 1)), 21, 0.01);
        for (const ink of ["text", "text2", "text3", "link", "success", "warning", "danger", "care"]) {
            for (const ground of root.pages)
                root.expect(ink, ground, 4.5);
        }
        for (const ground of root.softs) {
            for (const ink of ["text", "text2", "link", ground.replace("Soft", "")])
                root.expect(ink, ground, 4.5);
        }
        for (const ground of ["accent", "danger"])
            root.expect("onAccent", ground, 4.5);
        for (const kind of ["added", "removed"])
            root.expect(kind, kind + "Soft", 4.5);
        for (const ground of root.pages.concat(root.softs))
            root.expect("accent", ground, 3);
        for (const ground of ["window", "surface", "sunken", "hover"])
            root.expect("borderStrong", ground, 3);
        // A disabled control is exempt from the figures above, but not from being seen.
        for (const ground of ["window", "surface", "sunken"])
            root.expect("disabled", ground, 2);
        compare(Theme.focus, Theme.accent);
    }
}
