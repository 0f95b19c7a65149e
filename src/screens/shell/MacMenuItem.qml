import Qt.labs.platform
import Lumenpair.Shell

/// A command in a menu, grey where it would do nothing.
MenuItem {
    id: root

    required property int command
    required property AppCommands commands

    enabled: root.commands.needsOf(root.command) <= root.commands.there
    onTriggered: root.commands.run(root.command)
}
