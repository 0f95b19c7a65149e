import QtQuick
import QtTest
import Lumenpair.Kit
import Lumenpair.KitTests

/// Popups over popups: what lies in front has the keyboard, and in the end the person has it back where they were.
TestCase {
    id: root

    height: 600
    name: "popupLayers"
    visible: true
    when: windowShown
    width: 900

    LMPTextField {
        id: composer

        label: "外面"
    }

    LMPMenu {
        id: menu

        LMPMenuItem {
            text: "复制"
        }
    }

    Window {
        id: elsewhere

        height: 100
        width: 100
    }

    LMPModal {
        id: page

        height: windowHeight
        margins: 0
        width: windowWidth
        x: 0
        y: 0
        z: LMPModal.CarePage

        contentItem: FocusScope {
            Keys.onEscapePressed: page.close()
            focus: true

            Row {
                LMPButton {
                    id: dial

                    focus: true
                    text: "拨打"
                }

                LMPButton {
                    id: back

                    text: "返回"
                }
            }
        }
    }

    LMPDialog {
        id: offer

        buttons: ["打开", "以后再说"]
        escapeIndex: 1
        title: "有新的"
        unasked: true
    }

    LMPDialog {
        id: end

        buttons: ["重试", "返回"]
        escapeIndex: 1
        title: "要退出"
        z: LMPModal.Leaving
    }

    SignalSpy {
        id: answered

        signalName: "chosen"
        target: offer
    }

    function isIn(outer: var): bool {
        for (let at = root.Window.activeFocusItem; at; at = at.parent) {
            if (at === outer)
                return true;
        }
        return false;
    }

    function show(popup: LMPModal): void {
        popup.open();
        tryCompare(popup, "opened", true);
    }

    function endBy(key: int, popup: LMPModal): void {
        tryVerify(() => root.isIn(popup.contentItem));
        keyClick(key);
        tryCompare(popup, "visible", false);
    }

    function init() {
        Theme.reducedMotion = true;
        answered.clear();
        composer.forceActiveFocus();
        verify(root.isIn(composer));
    }

    function cleanup() {
        for (const popup of [page, offer, end]) {
            popup.close();
            tryCompare(popup, "visible", false);
        }
    }

    function test_whatCameBehindIsReadWhenItIsSeen() {
        root.show(page);
        root.show(offer);
        tryVerify(() => root.isIn(page.contentItem));
        wait(600);
        verify(root.isIn(page.contentItem));
        root.endBy(Qt.Key_Escape, page);
        tryVerify(() => root.isIn(offer.contentItem));
        keyClick(Qt.Key_Return);
        compare(answered.count, 0, "it was hidden until now");
        tryCompare(offer, "listens", true);
        root.endBy(Qt.Key_Return, offer);
        compare(answered.count, 1);
        tryVerify(() => root.isIn(composer));
    }

    function test_whatComesBeneathAQuestionWaits() {
        root.show(end);
        root.show(page);
        tryVerify(() => root.isIn(end.contentItem));
        root.endBy(Qt.Key_Escape, end);
        root.endBy(Qt.Key_Escape, page);
        tryVerify(() => root.isIn(composer));
    }

    function test_whatGoesBehindIsForgotten() {
        root.show(page);
        root.show(offer);
        tryVerify(() => root.isIn(dial));
        back.forceActiveFocus(Qt.TabFocusReason);
        offer.close();
        tryCompare(offer, "visible", false);
        wait(0);
        verify(root.isIn(back), "nothing moves in what is in front");
        root.endBy(Qt.Key_Escape, page);
        tryVerify(() => root.isIn(composer));
    }

    function test_whatComesOverAMenuClosesIt() {
        menu.popup(composer, 5, 5);
        tryCompare(menu, "visible", true);
        root.show(offer);
        tryCompare(menu, "visible", false);
        tryCompare(offer, "listens", true);
        root.endBy(Qt.Key_Return, offer);
        tryVerify(() => root.isIn(composer));
    }

    function test_whoIsElsewhereComesBackToWhereTheyWere() {
        elsewhere.show();
        elsewhere.requestActivate();
        tryVerify(() => elsewhere.active && root.Window.activeFocusItem === null);
        offer.open();
        tryCompare(offer, "listens", true, 5000, "it can be read there, too");
        root.Window.window.requestActivate();
        root.endBy(Qt.Key_Return, offer);
        tryVerify(() => root.isIn(composer));
        elsewhere.hide();
    }

    function test_whatIsRaisedOrLoweredTakesTheKeyboardWithIt() {
        root.show(page);
        end.z = LMPModal.Usual;
        root.show(end);
        tryVerify(() => root.isIn(page.contentItem));
        end.z = LMPModal.Leaving;
        tryVerify(() => root.isIn(end.contentItem));
        end.z = LMPModal.Usual;
        tryVerify(() => root.isIn(page.contentItem));
        end.z = LMPModal.Leaving;
        root.endBy(Qt.Key_Escape, end);
        root.endBy(Qt.Key_Escape, page);
        tryVerify(() => root.isIn(composer));
    }

    function test_theLaterIsInFrontOfItsLike() {
        root.show(offer);
        tryCompare(offer, "listens", true);
        end.z = LMPModal.Usual;
        root.show(end);
        tryVerify(() => root.isIn(end.contentItem));
        offer.forceActiveFocus();
        tryVerify(() => root.isIn(end.contentItem), 5000, "not for what lies behind");
        root.endBy(Qt.Key_Escape, end);
        root.endBy(Qt.Key_Escape, offer);
        tryVerify(() => root.isIn(composer));
        end.z = LMPModal.Leaving;
    }
}
