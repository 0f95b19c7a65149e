import QtQuick
import QtTest
import Lumenpair.Kit
import Lumenpair.Chat

Item {
    id: scene

    height: 700
    width: 900

    LMPFocusKeeper {}

    ChatCase {
        id: test

        name: "ChatPage"
        scene: scene

        function test_aBeginningReplacesNothing() {
            const beginning = test.button(test.page, "今天有件事，想和你说说：");
            verify(beginning);
            beginning.clicked();
            compare(test.page.composer.text, "今天有件事，想和你说说：");
            test.page.chat.input = "写了一半";
            beginning.clicked();
            compare(test.page.composer.text, "写了一半\n今天有件事，想和你说说：");
        }

        function test_turn() {
            verify(test.reads(test.page, "和你的分身聊点什么吧。"));
            test.beginTurn("今天有点累", "先歇");
            compare(test.page.composer.text, "");
            verify(test.reads(test.page, "今天有点累"));
            verify(test.button(test.page, "停止"));
            test.pushText("一会儿");
            test.awaitText(test.page, "先歇一会儿");
            test.finishTurn();
            test.awaitText(test.page, "余额 997 Pip");
            verify(test.reads(test.page, "3 Pip"));
            verify(!test.button(test.page, "停止"));
            tryVerify(() => test.page.announced.includes("先歇一会儿"));
        }

        function test_failure_data() {
            const refused = "本次结果与结算尚未确认。输入已保留在对话中，请先查看账单。";
            return [
                {
                    tag: "refused",
                    status: 402,
                    body: "{}",
                    text: refused
                },
                {
                    tag: "not connected",
                    status: 503,
                    body: '{"error":"relay_unconfigured"}',
                    text: "对话服务暂时未接通。你的输入已保留，可以稍后重试。"
                },
                {
                    tag: "ended early",
                    reply: "两个",
                    end: "close",
                    text: "连接已结束，尚未确认本次结果与结算。已收到的内容保留，请先查看账单。"
                },
                {
                    tag: "aborted",
                    reply: "两个",
                    end: '{"error":"stream_aborted"}',
                    text: "连接已结束，尚未确认本次结果与结算。已收到的内容保留，请先查看账单。"
                },
                {
                    tag: "empty",
                    end: '{"done":true,"pipCharged":2}',
                    text: "这一轮没吐出内容。钱已经按这一轮算过了，所以不自动重试（重试会再扣一次）——换个说法再问一次。"
                },
                {
                    tag: "broken",
                    status: 0,
                    text: "连接中断，已收到的内容保留。尚未确认本次结算，请先查看账单。"
                },
                {
                    tag: "plain route broken",
                    status: 404,
                    body: "{}",
                    plain: 0,
                    text: "连接中断，结果与结算尚未确认。输入已保留在对话中，请先查看账单。"
                }
            ];
        }
        function test_failure(data) {
            if (data.plain !== undefined)
                stage.answer("/relay/chat", data.plain, "{}");
            if (data.status !== undefined) {
                stage.answer(test.stream, data.status, data.body ?? "");
                test.type("问一句");
            } else {
                test.beginTurn("问一句", data.reply);
                if (data.end === "close")
                    stage.endStream();
                else
                    stage.push(data.end);
            }
            test.awaitText(test.page.transcript, data.text);
            verify(test.reads(test.page.transcript, "问一句"));
            verify(!data.reply || test.reads(test.page.transcript, data.reply));
            verify(!stage.chat.sending);
            verify(test.page.composer.enabled);
        }

        function test_stopOnlyFromTheComposer() {
            test.beginTurn("讲个长故事", "从前");
            test.page.transcript.forceActiveFocus();
            keyClick(Qt.Key_Escape);
            verify(stage.chat.sending);
            test.page.focusInput();
            verify(test.page.composer.activeFocus);
            keyClick(Qt.Key_Escape);
            verify(!stage.chat.sending);
            verify(test.reads(test.page.transcript, "从前"));
            verify(test.reads(test.page.transcript, "已停止"));
            test.beginTurn("换一个", "好");
        }

        function test_aConversationOfTheOtherKindIsAskedForNotBegun() {
            const wanted = [];
            test.page.conversationWanted.connect(incognito => wanted.push(incognito));
            test.page.switchIncognito(true);
            compare(wanted, [true]);
            verify(!test.page.chat.incognito);
        }

        function test_theKeyboardStaysInTheTextWhateverIsClicked() {
            stage.answerByStream();
            test.page.composer.text = "在吗";
            const send = test.button(test.page, "发送");
            mouseClick(send);
            mouseClick(send);
            verify(stage.chat.sending, "the second click of two stops nothing");
            keyClick(Qt.Key_A);
            keyClick(Qt.Key_Space);
            compare(test.page.composer.text, "a ");
            verify(stage.chat.sending);
            tryVerify(() => stage.requests(test.stream) === 1);
            // By keyboard it is stopped where the keyboard is, which then goes back.
            const stop = test.button(test.page, "停止");
            stop.forceActiveFocus(Qt.TabFocusReason);
            test.page.composer.text = "";
            wait(Application.styleHints.mouseDoubleClickInterval + 50);
            keyClick(Qt.Key_Space);
            verify(!stage.chat.sending);
            keyClick(Qt.Key_B);
            compare(test.page.composer.text, "b");
        }

        function test_noUndoBringsAnotherConversationsWordsBack() {
            stage.chat.begin(true);
            keyClick(Qt.Key_A);
            keyClick(Qt.Key_Backspace);
            stage.chat.begin(false);
            test.page.focusInput();
            keyClick(Qt.Key_Z, Qt.ControlModifier);
            compare(test.page.composer.text, "");
            keyClick(Qt.Key_B);
            keyClick(Qt.Key_Backspace);
            keyClick(Qt.Key_Z, Qt.ControlModifier);
            compare(test.page.composer.text, "b");
        }

        function test_whoWritesGetsTheCaretWhateverHadTheKeyboard() {
            test.button(test.page, "对话方式").forceActiveFocus(Qt.TabFocusReason);
            test.page.focusInput();
            keyClick(Qt.Key_A);
            compare(test.page.composer.text, "a");
        }

        function test_inputIsHeldWhileAReplyComes() {
            test.beginTurn("第一句", "嗯");
            test.type("第二句");
            test.awaitText(test.page, "回答或通话仍在进行。这条输入仅在本机待发，结束后请手动发送。");
            compare(test.page.composer.text, "第二句");
            compare(stage.requests(test.stream), 1);
            test.finishTurn();
            compare(test.page.composer.text, "第二句");
            compare(stage.requests(test.stream), 1);
            verify(!test.reads(test.page, "回答或通话仍在进行。"), "nothing holds it back any more");
        }

        function test_anotherAnswer_data() {
            return [
                {
                    tag: "given",
                    status: 200,
                    body: '{"messageId":"n1","text":"换个说法的回答","free":true}',
                    text: "换个说法的回答"
                },
                {
                    tag: "failed",
                    status: 500,
                    body: "{}",
                    text: "没能确认这次回答。旧回答和输入已保留，请重新打开对话核对。"
                },
                {
                    tag: "without an id",
                    status: 200,
                    body: '{"messageId":"  ","text":"x"}',
                    text: "这次回答缺少有效的消息编号，旧回答和输入已保留。请重新打开对话核对。"
                }
            ];
        }
        function test_anotherAnswer(data) {
            test.beginTurn("说说看", "第一种说法");
            test.finishTurn();
            stage.answer("/app/conversation/retry", data.status, data.body);
            test.press(test.page.transcript, "换个思路再来一次 · 这次免费");
            test.awaitText(test.page.transcript, data.text);
            verify(test.reads(test.page.transcript, "第一种说法"));
        }

        function test_failedMessageIsEditedAndSentAgain() {
            stage.answer(test.stream, 402, "{}");
            test.type("打错了字");
            tryVerify(() => stage.saves > 0);
            test.page.composer.text = "别的";
            test.press(test.page.transcript, "改一改再发");
            const occupied = "输入框还有未发送内容或已选目标，已为你保留。请先发送或复制保留并清空，再恢复这条失败消息。";
            test.awaitText(test.page.transcript, occupied);
            compare(test.page.composer.text, "别的");
            test.page.composer.text = "";
            test.press(test.page.transcript, "改一改再发");
            compare(test.page.composer.text, "打错了字");
            verify(test.reads(test.page, "正在重试原消息 · 可编辑或改为创作"));
            stage.answer("/app/conversation/retry", 200, '{"messageId":"n1","text":"这次好了"}');
            test.type("没打错字");
            test.awaitText(test.page.transcript, "这次好了");
            compare(test.page.composer.text, "");
        }
    }
}
