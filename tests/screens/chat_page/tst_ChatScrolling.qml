import QtQuick
import QtTest
import Lumenpair.Kit
import Lumenpair.Chat
import Lumenpair.Markdown

Item {
    id: scene

    height: 600
    width: 900

    LMPFocusKeeper {}

    ChatCase {
        id: test

        name: "ChatScrolling"
        scene: scene

        readonly property string paragraph: "又来一段话，说的是同一件事。\n\n"

        /// The row at the top of the view, and where it stands there.
        function topRow() {
            // A row that was made since the last frame has its height already, and those below it their old places.
            test.scroll().column.forceLayout();
            const rows = test.all(test.transcript, item => item instanceof TranscriptRow);
            const row = rows.find(one => one.y + one.height > test.transcript.contentY);
            return {
                id: row.messageId,
                at: row.y - test.transcript.contentY
            };
        }
        /// Waits until what is in sight stands there whole, where it stays.
        function rest() {
            tryVerify(() => !test.scroll().moving && !test.scroll().filling);
            waitForRendering(test.page, 100);
        }
        function scroll() {
            return test.all(test.transcript, item => item instanceof TranscriptScroll)[0];
        }
        function compareTop(before) {
            const now = test.topRow();
            compare(now.id, before.id);
            compare(now.at, before.at);
        }
        /// Lets the reply grow by enough to be seen.
        function grow() {
            const height = test.transcript.contentHeight;
            test.pushText(test.paragraph.repeat(5));
            tryVerify(() => test.transcript.contentHeight > height + 50);
        }
        function bar() {
            return test.all(test.transcript, item => item instanceof LMPScrollBar && item.height > 300)[0];
        }

        function test_followsUntilLetGo_data() {
            return [
                {
                    tag: "wheel",
                    letGo: () => mouseWheel(test.transcript, 400, 200, 0, 120)
                },
                {
                    tag: "page key",
                    letGo: () => keyClick(Qt.Key_PageUp)
                },
                {
                    tag: "arrow",
                    letGo: () => keyClick(Qt.Key_Up)
                },
                {
                    tag: "marking",
                    letGo: () => {
                        const words = test.all(test.transcript, item => item instanceof TextEdit).find(one => one.mapToItem(test.transcript, 0, 0).y > 20);
                        mouseDrag(words, 2, 8, words.width - 4, 0);
                    }
                },
                {
                    tag: "scroll bar",
                    letGo: () => mouseDrag(test.bar(), 5, test.bar().height - 30, 0, -60)
                },
                {
                    tag: "finger",
                    letGo: () => {
                        const finger = touchEvent(test.transcript);
                        finger.press(1, test.transcript, 400, 100).commit();
                        for (let y = 120; y <= 240; y += 20)
                            finger.move(1, test.transcript, 400, y).commit();
                        finger.release(1, test.transcript, 400, 240).commit();
                        // How far it would glide depends on how busy the machine is.
                        test.all(test.transcript, item => item instanceof Flickable).forEach(one => one.cancelFlick());
                    }
                }
            ];
        }
        function test_followsUntilLetGo(data) {
            test.openLong(30);
            test.beginTurn("接着说", "好。\n\n");
            test.grow();
            compare(test.transcript.distanceToEnd, 0);
            test.grow();
            compare(test.transcript.distanceToEnd, 0);

            data.letGo();
            tryVerify(() => !test.transcript.following);
            tryCompare(test.transcript, "moving", false);
            const before = test.topRow();
            test.grow();
            test.compareTop(before);
            verify(test.button(test.page, "↓ 新内容"));
            test.finishTurn();
            test.compareTop(before);

            test.button(test.page, "↓ 新内容").forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
            tryCompare(test.transcript, "distanceToEnd", 0);
            verify(test.transcript.following);
            verify(test.page.composer.activeFocus, "the button is gone, and the keyboard is where one types");
            test.beginTurn("再来", "好。\n\n");
            test.grow();
            compare(test.transcript.distanceToEnd, 0);
        }

        function test_whatWentWrongIsSeenWhereverOneReads() {
            test.openLong(30);
            test.beginTurn("接着说", "好。");
            const text = "连接已结束，尚未确认本次结果与结算。已收到的内容保留，请先查看账单。";
            for (let turn = 0; turn < 3; ++turn)
                keyClick(Qt.Key_PageUp);
            stage.endStream();
            tryVerify(() => !stage.chat.sending);
            tryCompare(test.page.composer, "hint", text);
            keyClick(Qt.Key_End);
            tryCompare(test.page.composer, "hint", "");
            test.awaitText(test.transcript, text);
        }

        function test_scrollingBackTakesHoldAgain() {
            test.openLong(30);
            mouseWheel(test.transcript, 400, 200, 0, 240);
            verify(!test.transcript.following);
            mouseWheel(test.transcript, 400, 200, 0, -120);
            verify(!test.transcript.following);
            mouseWheel(test.transcript, 400, 200, 0, -110);
            verify(test.transcript.following);
        }

        function test_theEndOfAReplyMovesNothing() {
            test.openLong(6);
            test.beginTurn("接着说", "好。\n\n" + test.paragraph.repeat(8));
            tryCompare(test.transcript, "distanceToEnd", 0);
            const before = test.topRow();
            const height = test.transcript.contentHeight;
            test.finishTurn();
            waitForRendering(test.page);
            compare(test.transcript.contentHeight, height);
            test.compareTop(before);
        }

        function test_olderMessagesComeWithoutAJump() {
            test.openLong(200);
            verify(!stage.chat.messages.atStart);
            const seen = {};
            const look = () => {
                const bottom = test.transcript.contentY + test.transcript.height;
                for (const row of test.all(test.transcript, item => item instanceof TranscriptRow)) {
                    if (row.y < bottom && row.y + row.height > test.transcript.contentY)
                        seen[row.messageId] = true;
                }
            };
            look();
            for (let turn = 0; turn < 200 && !(stage.chat.messages.atStart && test.transcript.contentY === 0); ++turn) {
                const before = test.topRow();
                keyClick(Qt.Key_PageUp);
                // Whoever reads waits for what there is to read.
                waitForRendering(test.page, 100);
                tryVerify(() => !test.scroll().filling);
                const now = test.topRow();
                look();
                // A page back, and not a page and what was fetched.
                const back = Number(before.id.slice(1)) - Number(now.id.slice(1));
                verify(back >= 0 && back < 12, "from " + before.id + " to " + now.id);
            }
            const missing = [];
            for (let i = 0; i < 200; ++i) {
                if (!seen["m" + i])
                    missing.push(i);
            }
            compare(missing.join(), "");
            keyClick(Qt.Key_End);
            tryVerify(() => stage.chat.messages.atEnd && test.transcript.distanceToEnd === 0);
            compare(test.transcript.following, true);
        }

        function test_aLongReplyMovesOnlyAsItIsScrolled() {
            let text = "";
            for (let i = 0; i < 400; ++i)
                text += i % 5 ? "第 " + i + " 段。" + "WWWWWWWW ".repeat(i % 23) + "\n\n" : "- 项\n- 项\n\n";
            stage.serve("long", JSON.stringify([
                {
                    id: "m0",
                    role: "user",
                    text: "说来话长"
                },
                {
                    id: "m1",
                    role: "twin",
                    text: text
                }
            ]).slice(1, -1));
            stage.chat.load("long");
            tryVerify(() => stage.chat.open && test.transcript.contentHeight > 9000 && test.transcript.distanceToEnd === 0);
            for (let turn = 0; turn < 60; ++turn) {
                waitForRendering(test.page, 100);
                const item = test.all(test.transcript, one => one instanceof MarkdownBlockItem && one.visible).find(one => one.mapToItem(test.transcript, 0, 0).y > 20);
                const before = item.mapToItem(test.transcript, 0, 0).y;
                mouseWheel(test.transcript, 400, 200, 0, 240);
                waitForRendering(test.page, 100);
                fuzzyCompare(item.mapToItem(test.transcript, 0, 0).y, before + 150, 1.5);
            }
        }

        function test_whatIsReadStaysThroughFetchingAndResizing() {
            test.openLong(300);
            for (let turn = 0; turn < 4; ++turn)
                keyClick(Qt.Key_PageUp);
            test.rest();
            const before = test.topRow();
            stage.chat.messages.fetchOlder();
            test.rest();
            test.compareTop(before);
            scene.width = 600;
            waitForRendering(test.page, 100);
            compare(test.topRow().id, before.id);
            scene.width = 900;
            scene.height = 400;
            waitForRendering(test.page, 100);
            compare(test.topRow().id, before.id);
            scene.height = 600;
        }

        function test_afterAPageWhatIsAheadIsMade() {
            test.openLong(300);
            for (let turn = 0; turn < 4; ++turn)
                keyClick(Qt.Key_PageUp);
            test.rest();
            const half = test.transcript.height / 2;
            const near = test.all(test.transcript, item => item instanceof TranscriptRow && !item.seen).filter(row => {
                const y = row.y - test.transcript.contentY;
                return y + row.height > -half && y < 3 * half;
            });
            verify(near.length > 0);
            tryVerify(() => near.every(row => row.made));
        }

        function test_keysOfTheComposer() {
            test.openLong(30);
            test.page.composer.text = "写到一半";
            for (const key of [Qt.Key_PageUp, Qt.Key_Up, Qt.Key_Home])
                keyClick(key);
            compare(test.transcript.distanceToEnd, 0);
            test.page.composer.text = "";
            keyClick(Qt.Key_Home);
            compare(test.transcript.contentY, 0);
            keyClick(Qt.Key_End);
            compare(test.transcript.distanceToEnd, 0);
        }
    }
}
