import QtQuick
import QtTest
import Lumenpair.Kit
import Lumenpair.Markdown

Item {
    id: root

    width: 600
    height: 500

    Component {
        id: modelComponent

        MarkdownBlockModel {
        }
    }

    Component {
        id: stageComponent

        Flickable {
            id: stage

            required property MarkdownBlockModel blocks
            property alias view: view

            anchors.fill: parent
            contentHeight: view.height

            MarkdownView {
                id: view

                blocks: stage.blocks
                maximumWidth: 560
            }
        }
    }

    TextEdit {
        id: paper
    }

    SignalSpy {
        id: links

        signalName: "linkActivated"
    }

    SignalSpy {
        id: copies

        signalName: "copyRequested"
    }

    TestCase {
        id: test

        name: "MarkdownView"
        when: windowShown

        function show(text) {
            const blocks = createTemporaryObject(modelComponent, root);
            blocks.setText(text);
            const stage = createTemporaryObject(stageComponent, root, {"blocks": blocks});
            links.clear();
            links.target = stage.view;
            copies.clear();
            copies.target = stage.view;
            verify(waitForRendering(stage));
            return stage;
        }

        /// The first item below `item` that `wanted` holds for.
        function find(item, wanted) {
            for (let i = 0; i < item.children.length; ++i) {
                const child = item.children[i];
                const found = wanted(child) ? child : find(child, wanted);
                if (found)
                    return found;
            }
            return null;
        }

        function button(item, words) {
            return find(item, child => child instanceof LMPButton && child.visible && child.text.startsWith(words));
        }

        function focused() {
            return root.Window.window.activeFocusItem;
        }

        function cleanup() {
            Theme.dark = false;
        }

        function test_keyboardReachesTextLinksAndButtons() {
            const stage = show("first\n\n- see [one](https://a.b/1) and [two](https://a.b/2)\n\n```\ncode\n```\n\nlast");
            verify(stage.view.moveFocus(-1, 1));
            compare(focused().getText(0, 5), "first");
            keyClick(Qt.Key_Down);
            compare(focused().getText(0, 3), "see");
            keyClick(Qt.Key_Tab);
            keyClick(Qt.Key_Tab);
            compare(focused().selectedText, "two");
            compare(focused().address, "https://a.b/2");
            keyClick(Qt.Key_Return);
            compare(links.count, 1);
            compare(String(links.signalArguments[0][0]), "https://a.b/2");
            keyClick(Qt.Key_Backtab);
            compare(focused().selectedText, "one");
            keyClick(Qt.Key_Down);
            compare(focused().text, "code");
            keyClick(Qt.Key_A, Qt.ControlModifier);
            keyClick(Qt.Key_C, Qt.ControlModifier);
            paper.clear();
            paper.paste();
            compare(paper.text, "code");
            keyClick(Qt.Key_Tab);
            compare(focused().text, "复制");
            keyClick(Qt.Key_Space);
            compare(copies.signalArguments[0][0], "code");
            compare(focused().text, "已复制");
        }

        function test_anAddressThatIsNotTheWebIsNoLink() {
            const edit = show("[here](javascript:alert(1)) [there](file:///etc/passwd)").view.itemAt(0).edit;
            for (let x = 2; x < edit.contentWidth; x += 4)
                compare(edit.linkAt(x, 12), "");
            mouseClick(edit, 10, 12);
            compare(links.count, 0);
        }

        function test_longCodeIsCopiedWholeAndShownInParts() {
            const stage = show("```js\n" + "let a = 1\n".repeat(300) + "```");
            const edit = stage.view.itemAt(0).edit;
            compare(edit.lineCount, 200);
            mouseClick(button(stage, "复制"));
            compare(copies.signalArguments[0][0], "let a = 1\n".repeat(300).slice(0, -1));
            stage.contentY = stage.contentHeight - stage.height;
            verify(waitForRendering(stage));
            const more = button(stage, "展开");
            compare(more.text, "展开（还有 100 行）");
            mouseClick(more);
            compare(edit.lineCount, 300);
            compare(button(stage, "展开"), null);
        }

        /// Code that grows is added to what is shown: what is selected stays.
        function test_aGrowingBlockKeepsItsSelection() {
            const stage = show("");
            stage.blocks.append("```\none\n");
            const edit = stage.view.itemAt(0).edit;
            edit.select(0, 2);
            stage.blocks.append("two\n");
            stage.blocks.append("```\n");
            compare(edit.text, "one\ntwo");
            compare(edit.selectedText, "on");
            compare(stage.view.itemAt(0).edit, edit);
        }

        function test_codeIsColouredWhenItsFenceCloses() {
            const stage = show("");
            stage.blocks.append("```js\nlet a = 'b'\n");
            verify(waitForRendering(stage));
            const before = grabImage(stage);
            stage.blocks.append("```\n");
            tryVerify(() => !grabImage(stage).equals(before));
        }

        function test_anotherThemeIsNotAnotherText() {
            const stage = show("`a` [b](https://c.d)\n\n|e|\n|-|\n\n```py\nif x\n```");
            const before = grabImage(stage);
            const spy = createTemporaryQmlObject("import QtTest; SignalSpy { signalName: 'dataChanged' }", root);
            spy.target = stage.blocks;
            Theme.dark = true;
            verify(waitForRendering(stage));
            verify(!grabImage(stage).equals(before));
            compare(spy.count, 0);
        }

        function test_imagesAreLoadedOnlyWhenAsked() {
            const stage = show("![cat](https://127.0.0.1:9/cat.png)\n\n![dog](http://127.0.0.1:9/dog.png)");
            const picture = row => find(stage.view.itemAt(row), child => child instanceof RemoteImage);
            compare(picture(0).status, RemoteImage.NotAsked);
            compare(button(stage.view.itemAt(1), "点击"), null);
            mouseClick(button(stage.view.itemAt(0), "点击加载图片"));
            tryCompare(picture(0), "status", RemoteImage.Failed);
            verify(button(stage.view.itemAt(0), "再试一次"));
            compare(picture(1).status, RemoteImage.NotAsked);
        }

        /// Of a long text only what is near the sight has items, and what is measured late moves nothing that is seen.
        function test_aLongTextHasFewItemsAndDoesNotJump() {
            let text = "";
            for (let i = 0; i < 600; ++i)
                text += i % 7 ? "Paragraph " + i + " WWWWWW ".repeat(i % 23) + "\n\n" : "```\n" + "x\n".repeat(i % 11) + "```\n\n";
            const stage = show(text);
            verify(stage.view.made() < 120);
            stage.contentY = stage.contentHeight / 2;
            verify(waitForRendering(stage));
            verify(waitForRendering(stage));
            verify(stage.view.made() < 120);
            for (let step = 0; step < 60; ++step) {
                const item = find(stage.view, child => child instanceof MarkdownBlockItem && child.visible && child.y >= stage.contentY + 100);
                const before = item.mapToItem(stage, 0, 0).y;
                stage.contentY -= 90;
                verify(waitForRendering(stage));
                fuzzyCompare(item.mapToItem(stage, 0, 0).y, before + 90, 1);
            }
            stage.contentY = stage.contentHeight - stage.height;
            verify(waitForRendering(stage));
            const last = stage.view.itemAt(stage.blocks.rowCount() - 1);
            compare(last.y + last.height, stage.view.implicitHeight);
        }
    }
}
