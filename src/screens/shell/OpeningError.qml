import Lumenpair.Kit
import Lumenpair.Shell

/// Why there is no service, and trying again.
LMPErrorState {
    id: root

    required property WindowScene scene

    actionText: "再试一次"
    text: root.scene.openError
    onAction: root.scene.reopen()
}
