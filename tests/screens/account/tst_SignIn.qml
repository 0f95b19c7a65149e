import QtQuick
import QtTest
import Lumenpair.Kit
import Lumenpair.Account
import Lumenpair.AccountBench

TestCase {
    id: test

    name: "SignIn"
    when: windowShown
    width: 920
    height: 600
    visible: true

    Component {
        id: screen

        SignedOutView {
            anchors.fill: parent
            resources: Bench.resources
            session: Bench.session
        }
    }

    Finder {
        id: find

        within: test
    }

    function test_smoke() {
        Bench.restart();
        const view = createTemporaryObject(screen, test);
        verify(view);
        verify(find.field("手机号"));
    }
}
