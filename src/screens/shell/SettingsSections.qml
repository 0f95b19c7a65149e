import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// The parts of the settings, below the tab "me".
FocusScope {
    id: root

    required property WindowNavigation navigation
    readonly property list<string> titles: ["账号", "外观", "隐私", "功能", "更新与关于", "快捷键"]
    readonly property list<string> icons: ["user", "sun", "lock", "spark", "download", "code"]

    signal chosen

    function step(from: int, by: int): void {
        const next = from + by;
        if (next >= 0 && next < rows.count)
            rows.itemAt(next).forceActiveFocus(Qt.TabFocusReason);
    }

    Accessible.name: "设置"
    Accessible.role: Accessible.List

    Column {
        spacing: Theme.dp(2)
        width: parent.width - 2 * x
        x: Theme.dp(8)

        Repeater {
            id: rows

            model: root.titles

            delegate: LMPRow {
                required property int index
                required property string modelData

                Keys.onDownPressed: root.step(index, 1)
                Keys.onUpPressed: root.step(index, -1)
                focus: index === 0
                iconName: root.icons[index]
                title: modelData
                width: parent ? parent.width : 0
                onClicked: {
                    root.navigation.openSection(index);
                    root.chosen();
                }
            }
        }

        LMPRow {
            iconName: "care"
            title: "求助热线"
            width: parent.width
            onClicked: root.navigation.openCrisis()
        }
    }
}
