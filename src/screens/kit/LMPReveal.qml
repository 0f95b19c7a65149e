/// Shows and hides what is typed into a secret field.

LMPIconButton {
    id: root

    checkable: true
    iconName: root.checked ? "eye-off" : "eye"
    iconSize: 16
    implicitHeight: Theme.target
    text: root.checked ? "隐藏输入的内容" : "显示输入的内容"
}
