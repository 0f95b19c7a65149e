import QtQuick
import Lumenpair.Kit

/// What is kept where, and what is sent: the whole of it, in plain words.
LMPSheet {
    id: root

    property bool shown: false
    readonly property list<string> sentences: [
        "对话、记忆和账号资料保存在服务器上。这台电脑只留草稿、缓存和几项设置；登录信息放在系统钥匙串里，没有能用的钥匙串时只在这次运行里有效，不写到磁盘上。",
        "出错和启动用时这类稳定性信息会发给服务，其中没有你说的话。使用情况只有在你同意之后才会发送，随时可以在设置里改。",
        "求助热线页不用登录，也不记录谁看过。"
    ]

    secondaryText: "好"
    title: "隐私"

    onShownChanged: root.shown ? root.open() : root.close()

    Component.onCompleted: {
        if (root.shown)
            root.open();
    }

    Repeater {
        model: root.sentences

        delegate: LMPText {
            required property string modelData

            text: modelData
            width: parent ? parent.width : 0
        }
    }
}
