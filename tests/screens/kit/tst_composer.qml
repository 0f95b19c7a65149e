import QtQuick
import QtTest
import Lumenpair.Kit
import Lumenpair.KitTests

TestCase {
    id: root

    height: 400
    name: "composer"
    visible: true
    when: windowShown
    width: 640

    LMPComposer {
        id: composer

        placeholderText: "说点什么"
        width: parent.width
    }

    LMPTextField {
        id: other

        label: "别处"
        y: 320
    }

    SignalSpy {
        id: submitted

        signalName: "submitted"
        target: composer
    }

    SignalSpy {
        id: stopped

        signalName: "stopRequested"
        target: composer
    }

    function init() {
        composer.busy = false;
        composer.canSend = true;
        composer.clear();
        composer.forceActiveFocus();
        submitted.clear();
        stopped.clear();
    }

    function type(text) {
        for (const letter of text)
            keyClick(letter);
    }

    function test_enterSendsAndShiftEnterBreaks() {
        type("ab");
        keyClick(Qt.Key_Return, Qt.ShiftModifier);
        type("c");
        compare(submitted.count, 0);
        keyClick(Qt.Key_Return);
        compare(submitted.count, 1);
        compare(submitted.signalArguments[0][0], "ab\nc");
        compare(composer.text, "ab\nc", "only the owner clears it");
        keyClick(Qt.Key_Enter);
        compare(submitted.count, 2);
    }

    function test_nothingToSend_data() {
        return [
            {
                tag: "empty",
                text: "",
                canSend: true
            },
            {
                tag: "blank",
                text: " \n\t　",
                canSend: true
            },
            {
                tag: "held",
                text: "a",
                canSend: false
            }
        ];
    }

    function test_nothingToSend(row) {
        composer.text = row.text;
        composer.canSend = row.canSend;
        keyClick(Qt.Key_Return);
        compare(submitted.count, 0);
        compare(composer.text, row.text);
    }

    function test_compositionHasItsKeys() {
        composer.busy = true;
        composer.text = "一二";
        keyClick(Qt.Key_Left);
        Probe.compose("nihao", "");
        verify(composer.inputMethodComposing);
        for (const key of [Qt.Key_Return, Qt.Key_Enter, Qt.Key_Escape, Qt.Key_Tab, Qt.Key_Backtab, Qt.Key_Left, Qt.Key_Right, Qt.Key_Up, Qt.Key_Down]) {
            keyClick(key);
            verify(composer.inputMethodComposing, "the composition is still open");
            verify(composer.activeFocus);
            compare(composer.text, "一二");
        }
        compare(submitted.count, 0);
        compare(stopped.count, 0);
        composer.busy = false;
        Probe.compose("", "你好");
        compare(composer.text, "一你好二");
        keyClick(Qt.Key_Return);
        compare(submitted.count, 1, "Enter right after the commit sends");
        compare(submitted.signalArguments[0][0], "一你好二");
    }

    function test_fieldLeavesACompositionItsKeys() {
        other.forceActiveFocus();
        Probe.compose("ni", "");
        for (const key of [Qt.Key_Return, Qt.Key_Tab, Qt.Key_Left])
            keyClick(key);
        verify(other.activeFocus && other.inputMethodComposing);
        Probe.compose("", "你");
        compare(other.text, "你");
        keyClick(Qt.Key_Tab);
        verify(!other.activeFocus);
    }

    function test_escapeStopsOnlyWhileBusy() {
        keyClick(Qt.Key_Escape);
        compare(stopped.count, 0);
        composer.busy = true;
        keyClick(Qt.Key_Escape);
        compare(stopped.count, 1);
    }

    function test_goesOnAtTheEndOfAFoundText() {
        composer.text = "ab";
        type("c");
        compare(composer.text, "abc");
        keyClick(Qt.Key_Home);
        keyClick(Qt.Key_Delete);
        type("d");
        compare(composer.text, "dbc", "what was typed stays where it was typed");
    }

    function test_growsAndScrolls() {
        compare(composer.implicitHeight, 44);
        composer.text = "一\n二\n三";
        verify(composer.implicitHeight > 80 && composer.implicitHeight < 110, composer.implicitHeight);
        composer.text = "行\n".repeat(60);
        compare(composer.implicitHeight, 220);
    }

    function test_tabLeaves() {
        keyClick(Qt.Key_Tab);
        verify(!composer.inputMethodComposing);
        compare(composer.text, "");
        verify(other.activeFocus);
    }
}
