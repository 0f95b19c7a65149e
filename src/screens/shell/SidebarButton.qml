import Lumenpair.Kit

/// The way to the sidebar from a page of a narrow window.
LMPIconButton {
    iconName: "menu"
    text: "显示侧栏"
}
