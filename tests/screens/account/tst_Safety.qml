import QtQuick
import QtTest
import Lumenpair.Account
import Lumenpair.AccountBench
import Lumenpair.Kit

/// The safety cards over any screen, and the crisis page without an account.
ScreenTest {
    id: test

    readonly property string crisis: '{"safety":{"crisis":true,"guidance":"你不用一个人扛着。","resourcesVerified":true,'
                                     + '"resources":[{"label":"热线","phone":"400-161-9995"},{"label":"网页","phone":"tel:1;x"}]}}'
    readonly property string reminder: '{"continuousUse":{"minutes":90,"message":"歇一歇。"}}'
    property Item field
    property SafetyCards cards
    property LMPSheet sheet

    function init(): void {
        Bench.restart();
        const window = createTemporaryObject(screen, test);
        test.field = window.field;
        test.sheet = window.sheet;
        test.cards = window.cards;
        test.field.forceActiveFocus();
        verify(test.hasKeyboard(test.field));
    }

    function opened(): void {
        tryVerify(() => test.cards.cardsOpen && test.Window.window.activeFocusItem !== null && !test.hasKeyboard(test.field));
    }

    function test_aCardTakesTheKeyboardAndGivesItBack() {
        Bench.safetyArrives(test.crisis);
        test.awaitText("你不用一个人扛着。");
        test.opened();
        // Whoever was typing neither calls anybody nor waves the card away.
        for (const key of [Qt.Key_A, Qt.Key_Space, Qt.Key_Return, Qt.Key_Escape])
            keyClick(key);
        verify(Bench.safety.crisisOpen);
        compare(Bench.opened, []);
        compare(test.field.text, "");
        // Esc has shown the way out.
        verify(test.hasKeyboard(test.control("关掉这张卡片")));
        keyClick(Qt.Key_Return);
        verify(!Bench.safety.crisisOpen);
        tryVerify(() => !test.cards.cardsOpen);
        tryVerify(() => test.hasKeyboard(test.field));

        Bench.safetyArrives(test.reminder);
        test.awaitText("歇一歇。");
        test.opened();
        keyClick(Qt.Key_Escape);
        verify(!Bench.safety.continuousUseOpen);
        tryVerify(() => test.hasKeyboard(test.field));
    }

    function test_aCardStandsOverASheetWhicheverCameFirst() {
        test.sheet.open();
        tryVerify(() => test.sheet.opened);
        Bench.safetyArrives(test.crisis);
        test.opened();
        test.press("关掉这张卡片");
        tryVerify(() => test.hasKeyboard(test.sheet.contentItem), 5000, "back to the sheet");
        test.sheet.close();
        tryVerify(() => !test.sheet.visible);

        Bench.safetyArrives(test.crisis);
        Bench.safetyArrives(test.reminder);
        test.opened();
        test.sheet.open();
        tryVerify(() => test.sheet.opened);
        tryVerify(() => !test.hasKeyboard(test.sheet.contentItem), 5000, "the card keeps the keyboard");
        const close = test.control("关掉这张卡片");
        tryVerify(() => {
            mouseClick(close);
            return !Bench.safety.crisisOpen;
        }, 5000, "the card is in front of the sheet");
        verify(test.shows("歇一歇。"), "each card goes by itself");
        // It is read out as if it came now, and again nobody waves it away by what they were doing.
        tryVerify(() => test.Window.window.activeFocusItem.Accessible.name === "歇一会儿。歇一歇。");
        keyClick(Qt.Key_Return);
        verify(Bench.safety.continuousUseOpen);
    }

    function test_aCardThatComesWhileTheLastOneGoesIsShown() {
        Theme.reducedMotion = false;
        Bench.safetyArrives(test.reminder);
        test.opened();
        tryVerify(() => test.control("知道了") !== null);
        test.use(test.control("知道了"));
        verify(!Bench.safety.anyOpen && test.cards.cardsOpen, "on its way out");
        Bench.safetyArrives(test.crisis);
        test.awaitText("你不用一个人扛着。");
        wait(2 * Theme.motion);
        verify(test.cards.cardsOpen);
        test.opened();
        test.press("关掉这张卡片");
        tryVerify(() => test.hasKeyboard(test.field));
    }

    function test_aNumberIsDialledAsItCameOrNotAtAll() {
        const spoilt = ["1\\u202e20", "110\\n120", "12\\u00000", "\\u200b120"];
        const numbers = key => spoilt.map(phone => `{"${key}":"热线","phone":"${phone}"}`).join();
        Bench.safetyArrives(`{"safety":{"crisis":true,"resourcesVerified":true,"guidance":"嗯。","resources":[${numbers("label")}]}}`);
        test.opened();
        const refuse = message => {
            const calls = () => test.all(item => item.text === "拨打" && item.clicked !== undefined);
            tryVerify(() => calls().length === spoilt.length);
            for (const call of calls()) {
                test.use(call);
                verify(message().startsWith("这一条里有不能拨的字符，所以没有拨："), message());
            }
            compare(Bench.opened, []);
        };
        refuse(() => Bench.safety.crisisMessage);
        test.press("关掉这张卡片");
        tryVerify(() => !test.cards.cardsOpen);

        Bench.answer("/api/app/crisis-resources", 200,
                     `{"region":"CN","verified":true,"guidance":"","items":[${numbers("name")}]}`);
        test.cards.openCrisisPage();
        tryVerify(() => Bench.resources.loaded);
        tryVerify(() => test.control("拨打") !== null);
        refuse(() => Bench.resources.dialMessage);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !test.cards.pageOpen);
    }

    function all(match: var): var {
        const found = [];
        test.inWindow(item => {
            if (match(item))
                found.push(item);
            return false;
        });
        return found;
    }

    function test_onlyPlainNumbersAreDialled() {
        Bench.safetyArrives(test.crisis);
        test.opened();
        const calls = () => test.inWindow(item => item.Accessible.name === "拨打 网页 tel:1;x" && item.clicked !== undefined);
        tryVerify(() => calls() !== null);
        test.use(calls());
        test.awaitText("这一条里有不能拨的字符，所以没有拨：tel:1;x。请核对之后用手机拨。");
        compare(Bench.opened, []);
        const good = test.inWindow(item => item.Accessible.name === "拨打 热线 400-161-9995" && item.clicked !== undefined);
        test.use(good);
        compare(Bench.opened, ["tel:400-161-9995"]);
        compare(Bench.safety.crisisMessage, "");
        Bench.openerWorks(false);
        test.use(good);
        test.awaitText("这台电脑没能拨出去，请用手机拨：400-161-9995。");
        for (const phone of ["", "热线", "12a", "120#", "１２０", "+86\n110"]) {
            const before = Bench.opened.length;
            Bench.safety.dial(phone);
            compare(Bench.opened.length, before, "not dialled: " + phone);
        }
    }

    function test_unverifiedNumbersAreNotGiven() {
        Bench.safetyArrives('{"safety":{"crisis":true,"guidance":"嗯。","resources":[{"label":"热线","phone":"1"}]}}');
        test.awaitText("这个地区还没有经核实的号码清单，所以这里不给号码——请联系当地紧急服务或你信任的人。");
        compare(test.control("拨打"), null);
    }

    function test_theCrisisPageNeedsNoAccount() {
        Bench.answer("/api/app/crisis-resources?region=CN", 200,
                     '{"region":"CN","verified":true,"assumedRegion":true,"guidance":"请先打急救电话。","items":[{"name":"急救","phone":"120"}]}');
        Bench.answer("/api/app/crisis-resources?region=HK", 200, '{"region":"HK","verified":false,"guidance":"","items":[{"name":"x","phone":"1"}]}');
        Bench.answer("/api/app/crisis-resources?region=SG", 503, '{"reason":"忙。"}');
        test.cards.openCrisisPage();
        for (const text of ["现在很难受？先看这个", "真人热线置顶 · 不用登录 · 不记录你来过", "中国大陆", "请先打急救电话。", "120",
                            "没读到你的所在地，先按中国大陆给。不在中国大陆的话，在上面换一个地区。",
                            "· AI 不接手：不替你打、不替你回、不分析你"])
            test.awaitText(text);
        test.press("拨打");
        compare(Bench.opened, ["tel:120"]);

        // The list lies over the page that it belongs to.
        const regions = test.inWindow(item => item.label === "地区" && item.opened !== undefined);
        mouseClick(regions, regions.width / 2, regions.height - 8);
        tryVerify(() => regions.opened);
        const second = () => test.inWindow(item => item.modelData === Bench.resources.regions[1] && item.visible);
        tryVerify(() => {
            if (second() !== null)
                mouseClick(second());
            return Bench.resources.regionIndex === 1;
        });
        test.awaitText("中国香港 · 暂无清单");
        test.awaitText("这个地区还没有经核实的紧急号码清单——请联系当地紧急服务或信任的人。");
        compare(test.control("拨打"), null);
        Bench.resources.chooseRegion(4);
        test.awaitText("清单没读到（忙）。请联系当地紧急服务，或找一个你信任的人。");

        // A card that comes meanwhile waits below, and going back leads to where one was.
        Bench.safetyArrives(test.crisis);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !test.cards.pageOpen);
        test.awaitText("你不用一个人扛着。");
        tryVerify(() => Bench.resources.regionIndex === 0, 5000, "nothing is kept of the visit");
        verify(!Bench.sentToken("/api/app/crisis-resources"));
        compare(Bench.count("/api"), Bench.count("/api/app/crisis-resources"));
    }

    name: "Safety"

    Component {
        id: screen

        FocusScope {
            property alias cards: over
            property alias field: input
            property alias sheet: form

            anchors.fill: parent
            focus: true

            LMPTextField {
                id: input

                focus: true
                label: "说点什么"
            }

            LMPSheet {
                id: form

                primaryText: "好"
                title: "一张单子"

                LMPTextField {
                    focus: true
                    label: "名字"
                    width: parent.width
                }
            }

            SafetyCards {
                id: over

                anchors.fill: parent
                resources: Bench.resources
                safety: Bench.safety
            }
        }
    }
}
