import QtQuick
import Lumenpair.Kit

/// One bar, as high as what it stands in.
Rectangle {
    id: root

    required property int modelData

    color: Theme.borderStrong
    height: root.parent ? root.parent.height : 0
    width: Theme.dp(3)
    x: Theme.dp(root.modelData)
}
