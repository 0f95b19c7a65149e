import QtQuick
import QtTest
import Lumenpair.Kit
import Lumenpair.KitTests

TestCase {
    id: root

    height: 420
    name: "sheet"
    visible: true
    when: windowShown
    width: 700

    LMPTextField {
        id: outside

        label: "外面"
    }

    LMPButton {
        id: opener

        text: "打开"
        x: 300
    }

    LMPSheet {
        id: sheet

        hasTypedInput: typed.text !== ""
        primaryText: "保存"
        title: "新的约定"

        LMPTextField {
            id: typed

            focus: true
            label: "内容"
            width: parent.width
        }

        Item {
            id: filler

            height: visible ? 900 : 0
            visible: false
            width: 1
        }

        LMPButton {
            id: deep

            text: "最下面"
        }
    }

    LMPDialog {
        id: dialog

        buttons: ["继续等待", "仍要退出"]
        dangerIndex: 1
        escapeIndex: 0
        text: "还有内容没有保存。"
        title: "现在退出？"
    }

    LMPDialog {
        id: uninvited

        buttons: ["打开", "以后再说"]
        escapeIndex: 1
        title: "有新的"
        unasked: true
    }

    SignalSpy {
        id: answered

        signalName: "chosen"
        target: uninvited
    }

    SignalSpy {
        id: rejected

        signalName: "rejected"
        target: sheet
    }

    SignalSpy {
        id: accepted

        signalName: "accepted"
        target: sheet
    }

    SignalSpy {
        id: chosen

        signalName: "chosen"
        target: dialog
    }

    function initTestCase() {
        Theme.reducedMotion = true;
    }

    function init() {
        for (const spy of [rejected, accepted, chosen])
            spy.clear();
        typed.text = "";
        outside.forceActiveFocus();
        sheet.open();
        tryCompare(sheet, "opened", true);
    }

    function cleanup() {
        dialog.close();
        uninvited.close();
        sheet.close();
        tryCompare(sheet, "visible", false);
    }

    function test_keyboardStaysInsideAndComesBack() {
        verify(!outside.activeFocus);
        for (let i = 0; i < 12; ++i) {
            keyClick(Qt.Key_Tab);
            verify(!outside.activeFocus, "stop " + i);
        }
        keyClick(Qt.Key_Escape);
        tryCompare(sheet, "visible", false);
        compare(rejected.count, 1);
        verify(outside.activeFocus, "the keyboard is given back");
    }

    function test_theRingComesBackForWhoGoesByKeys_data() {
        return [
            {tag: "keys", reason: Qt.TabFocusReason},
            {tag: "pointer", reason: Qt.MouseFocusReason}
        ];
    }

    function test_theRingComesBackForWhoGoesByKeys(data) {
        sheet.close();
        tryCompare(sheet, "visible", false);
        opener.forceActiveFocus(data.reason);
        sheet.open();
        tryCompare(sheet, "opened", true);
        keyClick(Qt.Key_Escape);
        tryCompare(sheet, "visible", false);
        verify(opener.activeFocus);
        compare(opener.visualFocus, data.reason === Qt.TabFocusReason);
    }

    function test_whoAskedMeanwhileKeepsTheKeyboard() {
        Theme.reducedMotion = false;
        sheet.close();
        verify(sheet.visible, "on its way out");
        opener.forceActiveFocus(Qt.TabFocusReason);
        tryCompare(sheet, "visible", false);
        Theme.reducedMotion = true;
        verify(opener.activeFocus);
    }

    function test_escapeAsksBeforeTypedInputIsLost() {
        typed.forceActiveFocus();
        typed.text = "写了一点";
        keyClick(Qt.Key_Escape);
        wait(0);
        verify(sheet.visible);
        keyClick(Qt.Key_Escape);
        wait(0);
        verify(sheet.visible, "Esc keeps what was typed");
        compare(rejected.count, 0);
        verify(typed.activeFocus, "the keyboard is back in the sheet");
        keyClick(Qt.Key_Escape);
        wait(0);
        keyClick(Qt.Key_Tab);
        keyClick(Qt.Key_Space);
        tryCompare(sheet, "visible", false);
        compare(rejected.count, 1);
    }

    function test_compositionKeepsEscape() {
        typed.forceActiveFocus();
        Probe.compose("ni", "");
        keyClick(Qt.Key_Escape);
        verify(sheet.visible && typed.inputMethodComposing);
        Probe.compose("", "");
        keyClick(Qt.Key_Escape);
        tryCompare(sheet, "visible", false);
    }

    function test_primaryLeavesClosingToTheOwner() {
        const button = Probe.inside(sheet.contentItem, "LMPButton_", "保存");
        mouseClick(button);
        compare(accepted.count, 1);
        verify(sheet.visible);
        sheet.primaryBusy = true;
        mouseClick(button);
        button.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        keyClick(Qt.Key_Space);
        compare(accepted.count, 1, "a busy button does nothing");
        sheet.primaryBusy = false;
    }

    function test_fitsALowWindow() {
        compare(sheet.width, 560);
        filler.visible = true;
        const scroll = Probe.inside(sheet.contentItem, "LMPScrollView");
        tryVerify(() => scroll.contentHeight > 900);
        verify(sheet.height <= root.height, sheet.height);
        verify(sheet.y >= 0 && sheet.y + sheet.height <= 420 + 20);
        deep.forceActiveFocus(Qt.TabFocusReason);
        verify(deep.mapToItem(scroll, 0, 0).y + deep.height <= scroll.height, "what has the keyboard is in view");
        const bottom = scroll.contentY;
        keyClick(Qt.Key_Tab);
        verify(!deep.activeFocus);
        keyClick(Qt.Key_PageUp);
        verify(scroll.contentY < bottom, "the page keys scroll from outside");
        filler.visible = false;
    }

    function test_anUninvitedDialogTakesNoKeysMeantForOthers() {
        answered.clear();
        uninvited.open();
        verify(uninvited.visible);
        for (const key of [Qt.Key_Return, Qt.Key_Space, Qt.Key_Escape])
            keyClick(key);
        compare(answered.count, 0);
        verify(uninvited.visible);
        tryVerify(() => {
            keyClick(Qt.Key_Return);
            return answered.count > 0;
        });
        compare(answered.signalArguments[0][0], 1, "and then the harmless one");
        tryCompare(uninvited, "visible", false);
    }

    function test_oneAnswerToAQuestion() {
        Theme.reducedMotion = false;
        dialog.open();
        tryCompare(dialog, "opened", true);
        const button = Probe.inside(dialog.contentItem, "LMPButton_", "继续等待");
        mouseClick(button);
        verify(dialog.visible, "on its way out");
        mouseClick(button);
        keyClick(Qt.Key_Return);
        keyClick(Qt.Key_Escape);
        compare(chosen.count, 1);
        tryCompare(dialog, "visible", false);
        Theme.reducedMotion = true;
    }

    function test_aSheetOnItsWayOutHearsNothing() {
        Theme.reducedMotion = false;
        const button = Probe.inside(sheet.contentItem, "LMPButton_", "保存");
        typed.text = "已经存好";
        sheet.close();
        verify(sheet.visible, "on its way out");
        mouseClick(button);
        keyClick(Qt.Key_Escape);
        compare(accepted.count, 0);
        tryCompare(sheet, "visible", false);
        verify(outside.activeFocus, "no question about what is saved is left behind");
        Theme.reducedMotion = true;
    }

    function test_dialogAnswers() {
        dialog.open();
        tryCompare(dialog, "opened", true);
        keyClick(Qt.Key_Escape);
        compare(chosen.signalArguments[0][0], 0);
        tryCompare(dialog, "visible", false);
        dialog.open();
        tryCompare(dialog, "opened", true);
        keyClick(Qt.Key_Return);
        compare(chosen.count, 2);
        compare(chosen.signalArguments[1][0], 0, "the safe answer has the keyboard");
    }
}
