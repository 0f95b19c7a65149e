import QtQuick
import Lumenpair.Kit

/// Three short steps that say what this is and what it is not.
FocusScope {
    id: root

    signal finished()
}
