import QtQuick
import Lumenpair.Account
import Lumenpair.Kit
import Lumenpair.Shell

/// The account, what the twin knows, and everything that can be set.
TabPage {
    id: root

    /// The part that is to be shown as soon as it has its place; -1 for none.
    property int sought: -1
    /// What has the keyboard keeps its place when the size of everything changes: who tries the sizes goes on to the next.
    property Item kept: null
    property real keptTop: 0

    function show(section: int): void {
        const item = parts.children[section];
        const top = item.mapToItem(page.contentItem, 0, 0).y - Theme.space4;
        page.contentY = Math.max(0, Math.min(top, page.contentHeight - page.height));
        const first = item.nextItemInFocusChain(true);
        if (first)
            first.forceActiveFocus(Qt.OtherFocusReason);
    }

    function topOf(item: Item): real {
        return item.mapToItem(root, 0, 0).y;
    }

    function keepPlace(): void {
        const item = root.Window.activeFocusItem;
        if (!root.visible || !item || !page.holds(item))
            return;
        root.keptTop = root.topOf(item);
        root.kept = item;
    }

    function restorePlace(): void {
        const item = root.kept;
        root.kept = null;
        page.scrollBy(root.topOf(item) - root.keptTop);
    }

    // The places change with the next picture, and not yet.
    Connections {
        function onScaleChanging(): void {
            root.keepPlace();
        }

        target: root.scene.appearance
    }

    Connections {
        function onAfterAnimating(): void {
            root.restorePlace();
        }

        enabled: root.kept !== null
        target: root.Window.window
    }

    Connections {
        function onSectionRequested(section: int): void {
            root.sought = section;
            root.Window.window.requestUpdate();
        }

        target: root.scene.navigation
    }

    // A page that was made just now has no places to go to before it is laid out.
    Connections {
        function onAfterAnimating(): void {
            const section = root.sought;
            root.sought = -1;
            root.show(section);
        }

        enabled: root.sought >= 0
        target: root.Window.window
    }

    LMPPage {
        anchors.fill: parent
        focus: true
        leading: SidebarButton {
            visible: root.frame.sidebarHidden
            onClicked: root.frame.sidebarRequested()
        }
        title: "我的"

        LMPScrollView {
            id: page

            anchors.fill: parent
            bottomPadding: Theme.dp(32)
            focus: true
            horizontalPadding: Math.max(Theme.dp(20), Math.round((width - Theme.dp(640)) / 2))
            spacing: Theme.dp(28)
            topPadding: Theme.dp(20)

            SettingsPart {
                title: "分身"
                width: parent.width

                LMPCard {
                    accessibleName: "分身"
                    padding: Theme.space8
                    width: parent.width

                    LMPRow {
                        iconName: "memory"
                        subtitle: "它记住的关于你的事：确认、纠正、忘记"
                        title: "记忆账本"
                        twoLine: true
                        width: parent.width
                        onClicked: root.scene.navigation.openMemory()
                    }
                }
            }

            Column {
                id: parts

                spacing: Theme.dp(28)
                width: parent.width

                SettingsPart {
                    title: "账号"
                    width: parent.width

                    AccountSection {
                        session: root.scene.session
                        width: parent.width
                    }
                }

                AppearanceSettings {
                    appearance: root.scene.appearance
                    width: parent.width
                }

                PrivacySettings {
                    telemetry: root.scene.telemetry
                    width: parent.width
                    onCrisisRequested: root.scene.navigation.openCrisis()
                }

                FeatureSettings {
                    capabilities: root.scene.capabilities
                    width: parent.width
                }

                AboutSettings {
                    updates: root.scene.updates
                    width: parent.width
                }

                KeySettings {
                    commands: root.scene.commands
                    width: parent.width
                }
            }
        }
    }
}
