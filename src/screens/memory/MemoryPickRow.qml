import QtQuick
import Lumenpair.Kit

/// A candidate that can be picked.
LMPCheckBox {
    id: root

    required property string candidateId
    required property string content
    required property string why
    required property bool picked

    description: root.why
    text: root.content
    width: parent ? parent.width : 0

    Binding on checked {
        value: root.picked
    }
}
