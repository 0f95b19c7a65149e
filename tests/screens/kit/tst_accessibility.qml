import QtQuick
import QtTest
import Lumenpair.Kit
import Lumenpair.KitTests

/// What holds for every control of the kit, on a page that has them all.
TestCase {
    id: root

    height: 1500
    name: "accessibility"
    visible: true
    when: windowShown
    width: 1120

    KitSheet {
        id: page

        anchors.fill: parent
    }

    function test_everyStopSaysWhatItIs() {
        const stops = Probe.stops(page);
        verify(stops.length > 35, stops.length + " stops");
        for (const item of stops) {
            const heard = Probe.heard(item);
            verify(heard.role > 0 && heard.role !== 0x10 /* client */, item + " has no role");
            verify((heard.name + heard.description).trim() !== "", item + " has no name");
            // A text of several lines is hit by its frame.
            verify(item instanceof TextEdit || item.height >= 28, `${heard.name} is only ${item.height} high`);
            verify(item.width >= 28, `${heard.name} is only ${item.width} wide`);
            verify(item.enabled || heard.description.includes("不可用"), heard.name);
        }
    }

    function test_nothingIsCutOrOverlaps_data() {
        return [0.85, 1, 1.3, 1.6].map(scale => ({
                        "tag": scale,
                        "scale": scale
                    }));
    }

    /// A text that neither wraps nor elides must have the room it wants.
    function test_nothingIsCutOrOverlaps(row) {
        Theme.scale = row.scale;
        wait(0);
        const check = item => {
            if (!item.visible)
                return;
            if (item instanceof Text && item.text !== "") {
                verify(item.font.pixelSize >= 12, item.text);
                verify(item.elide !== Text.ElideNone || item.contentWidth <= Math.ceil(item.width) + 1, `${item.text}: ${item.contentWidth} in ${item.width}`);
            }
            for (let i = 0; i < item.children.length; ++i)
                check(item.children[i]);
        };
        check(page);
        Theme.scale = 1;
    }

    function test_states() {
        const states = [["LMPCheckBox", "同意条款", "checked"], ["LMPSwitch", "共享使用情况", "checked"], ["LMPRadio", "跟随系统", "checked"], ["LMPRow", "分身", "selected"]];
        for (const [type, name, state] of states) {
            const heard = Probe.heard(Probe.inside(page, type));
            compare(heard.name, name);
            verify(heard[state], name + " is not " + state);
        }
        compare(Probe.heard(Probe.inside(page, "LMPSwitch")).description, "只含次数与耗时，不含聊天内容");
        const heading = Probe.heard(Probe.inside(page, "", "类型"));
        compare(heading.name, "类型");
        compare(heading.role, 0x29, "static text");
        compare(page.thread.Accessible.name, "林小满，未读 3 条，明天见，记得带伞，昨天");
        compare(page.waiting.Accessible.name, "𠮷田，待你决定，想请你看一下这个安排");
    }
}
