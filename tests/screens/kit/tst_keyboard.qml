import QtQuick
import QtTest
import Lumenpair.Kit
import Lumenpair.KitTests

TestCase {
    id: root

    property int bound: 1
    property int presses: 0
    property string second: "乙"

    height: 480
    name: "keyboard"
    visible: true
    when: windowShown
    width: 640

    Column {
        spacing: 8

        LMPButton {
            id: button

            text: "按钮"
            onClicked: ++root.presses
        }

        LMPIconButton {
            id: iconButton

            checkable: true
            iconName: "leaf"
            text: "省钱模式"
            onClicked: ++root.presses
        }

        LMPChip {
            id: chip

            clickable: true
            text: "记忆"
            onClicked: ++root.presses
        }

        LMPRow {
            id: row

            title: "一行"
            onClicked: ++root.presses
        }

        LMPSegmented {
            id: segmented

            currentIndex: root.bound
            label: "外观"
            model: ["甲", root.second, "丙"]
            onActivated: index => root.bound = index
        }

        LMPComboBox {
            id: combo

            label: "大小"
            model: ["小", "中", "大"]
        }

        LMPTextArea {
            id: area

            label: "多行"
        }

        Row {
            LMPRadio {
                id: first

                checked: true
                text: "一"
            }

            LMPRadio {
                id: second

                text: "二"
            }
        }
    }

    LMPMenu {
        id: menu

        LMPMenuItem {
            text: "复制"
            onTriggered: ++root.presses
        }

        LMPMenuItem {
            enabled: false
            text: "不可用"
        }

        LMPMenuItem {
            text: "删除"
            onTriggered: root.presses += 10
        }
    }

    Row {
        id: group

        anchors.bottom: parent.bottom

        LMPButton {
            text: "前"

            onClicked: ++root.presses
        }

        LMPTextField {
            id: going

            label: "会走"
        }

        LMPFocusKeeper {
        }
    }

    SignalSpy {
        id: activated

        signalName: "activated"
    }

    function init() {
        root.presses = 0;
        activated.clear();
    }

    function test_spaceAndEnterPress_data() {
        return [button, iconButton, chip, row].map(control => ({
                        "tag": String(control),
                        "control": control
                    }));
    }

    function test_spaceAndEnterPress(data) {
        const stop = data.control === chip ? Probe.inside(chip, "QQuickAbstractButton") : data.control;
        stop.forceActiveFocus(Qt.TabFocusReason);
        verify(stop.visualFocus);
        const before = iconButton.checked;
        keyClick(Qt.Key_Space);
        keyClick(Qt.Key_Return);
        keyClick(Qt.Key_Enter);
        compare(root.presses, 3);
        compare(iconButton.checked, data.control === iconButton ? !before : before);
        mouseClick(stop);
        compare(root.presses, 4);
    }

    function test_arrowsChooseASegment() {
        activated.target = segmented;
        root.bound = 0;
        compare(segmented.currentIndex, 0);
        segmented.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Left);
        compare(activated.count, 0);
        keyClick(Qt.Key_Right);
        keyClick(Qt.Key_Right);
        keyClick(Qt.Key_Right);
        compare(activated.count, 2);
        compare(root.bound, 2);
        mouseClick(segmented.itemAt(1));
        compare(root.bound, 1);
        root.bound = 0;
        compare(segmented.currentIndex, 0, "still bound");
        verify(segmented.activeFocus);
        compare(Probe.heard(segmented).name, "外观：甲");
        compare(Probe.stops(segmented).length, 0, "the container is the only stop");
        root.bound = 1;
        root.second = "乙 3";
        compare(segmented.currentIndex, 1, "another word is no other choice");
        compare(Probe.heard(segmented).name, "外观：乙 3");
    }

    function test_comboBox() {
        activated.target = combo;
        combo.forceActiveFocus();
        keyClick(Qt.Key_Return);
        tryCompare(combo, "opened", true);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        tryCompare(combo, "opened", false);
        compare(activated.count, 1);
        compare(activated.signalArguments[0][0], 2);
        compare(combo.currentText, "大");
        keyClick(Qt.Key_Space);
        tryCompare(combo, "opened", true);
        keyClick(Qt.Key_Escape);
        tryCompare(combo, "opened", false);
        compare(combo.currentIndex, 2);
    }

    function test_menu() {
        menu.popup(root, 10, 10);
        tryCompare(menu, "opened", true);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        compare(root.presses, 10);
        tryCompare(menu, "visible", false);
    }

    function test_aMenuShowsWhereTheKeyboardIsAfterIt() {
        for (const reason of [Qt.TabFocusReason, Qt.MouseFocusReason]) {
            area.forceActiveFocus();
            button.forceActiveFocus(reason);
            menu.popup(root, 10, 10);
            tryCompare(menu, "opened", true);
            keyClick(Qt.Key_Escape);
            tryCompare(menu, "visible", false);
            tryCompare(button, "activeFocus", true);
            compare(button.visualFocus, reason === Qt.TabFocusReason);
        }
    }

    function test_whatIsHiddenGivesTheKeyboardAway() {
        const ofGroup = () => {
            let at = root.Window.window.activeFocusItem;
            while (at && at !== group)
                at = at.parent;
            return at === group;
        };
        going.forceActiveFocus();
        keyClick("a");
        going.visible = false;
        tryVerify(() => !going.activeFocus);
        verify(ofGroup(), "to what stands beside it");
        keyClick("b");
        compare(going.text, "a");
        going.visible = true;

        // Whoever clicked sees no ring, and must not press what they did not choose.
        mouseClick(going);
        const editor = root.Window.window.activeFocusItem;
        going.visible = false;
        tryVerify(() => !editor.activeFocus);
        keyClick("c");
        keyClick(Qt.Key_Return);
        compare(going.text, "a");
        compare(root.presses, 0);
        going.visible = true;

        // Who hides it and gives the keyboard somewhere has the last word.
        going.forceActiveFocus();
        going.visible = false;
        area.forceActiveFocus();
        wait(0);
        verify(area.activeFocus);
        going.visible = true;
    }

    function test_radios() {
        first.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Right);
        verify(second.checked && !first.checked && second.activeFocus);
        keyClick(Qt.Key_Tab);
        verify(!first.activeFocus && !second.activeFocus, "a group is one stop");
        keyClick(Qt.Key_Backtab);
        verify(second.activeFocus, "the one that is chosen");
        keyClick(Qt.Key_Down);
        verify(first.checked);
    }

    function test_tabLeavesATextArea() {
        area.forceActiveFocus();
        keyClick("a");
        keyClick(Qt.Key_Return);
        keyClick(Qt.Key_Tab);
        compare(area.text, "a\n");
        verify(first.activeFocus);
        keyClick(Qt.Key_Backtab);
        verify(area.activeFocus);
    }
}
