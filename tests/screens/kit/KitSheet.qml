import QtQuick
import Lumenpair.Kit

/// Every control of the kit in every state, for looking at and for the tests that hold for all of them.
Rectangle {
    id: root

    readonly property Item thread: unreadRow
    readonly property Item waiting: waitingRow

    color: Theme.window
    height: 1500
    width: 1120

    component Heading: LMPText {
        color: Theme.text2
        kind: LMPText.Strong
    }

    Row {
        anchors.fill: parent
        anchors.margins: Theme.space20
        spacing: Theme.space20

        Column {
            spacing: Theme.space12
            width: (parent.width - parent.spacing) * 0.5

            Heading {
                text: "按钮"
            }
            Flow {
                spacing: Theme.space8
                width: parent.width
                LMPButton {
                    kind: LMPButton.Primary
                    text: "登录"
                }
                LMPButton {
                    text: "取消"
                }
                LMPButton {
                    iconName: "retry"
                    text: "重试"
                }
                LMPButton {
                    kind: LMPButton.Quiet
                    text: "稍后"
                }
                LMPButton {
                    kind: LMPButton.Danger
                    text: "退出登录"
                }
                LMPButton {
                    kind: LMPButton.Link
                    text: "查看求助资源"
                }
                LMPButton {
                    enabled: false
                    kind: LMPButton.Primary
                    text: "发送验证码"
                }
                LMPButton {
                    enabled: false
                    text: "不可用"
                }
                LMPButton {
                    busy: true
                    kind: LMPButton.Primary
                    text: "正在登录"
                }
                LMPButton {
                    busy: true
                    text: "正在保存"
                }
            }
            Row {
                spacing: Theme.space4
                LMPIconButton {
                    iconName: "copy"
                    text: "复制"
                }
                LMPIconButton {
                    iconName: "thumb-up"
                    text: "有帮助"
                    checkable: true
                    checked: true
                }
                LMPIconButton {
                    iconName: "thumb-down"
                    text: "没帮助"
                    checkable: true
                }
                LMPIconButton {
                    iconName: "trash"
                    text: "删除"
                    danger: true
                }
                LMPIconButton {
                    iconName: "more"
                    text: "更多"
                    enabled: false
                }
                LMPAvatar {
                    name: "林小满"
                }
                LMPAvatar {
                    name: "Ada"
                    size: 40
                }
                LMPBusy {
                    text: "正在加载对话"
                }
            }
            Heading {
                text: "类型"
            }
            LMPText {
                kind: LMPText.H1
                text: "一级标题 Heading"
            }
            LMPText {
                kind: LMPText.H2
                text: "二级标题 Heading"
            }
            LMPText {
                kind: LMPText.H3
                text: "三级标题 Heading"
            }
            LMPText {
                kind: LMPText.Chat
                width: parent.width
                text: "聊天正文：你最近在准备搬家，我记得你说过新家离公司更近，早上可以多睡半个小时。"
            }
            LMPText {
                width: parent.width
                text: "正文 Body，标点、English mixed with 中文 and 12,345。"
            }
            LMPText {
                kind: LMPText.Caption
                color: Theme.text3
                text: "说明文字 12:30 · 已送达"
            }
            LMPText {
                kind: LMPText.Mono
                text: "const answer = 42; // 注释"
            }
            Heading {
                text: "输入"
            }
            LMPTextField {
                label: "手机号"
                placeholderText: "请输入手机号"
                helpText: "只用于登录"
                width: parent.width
            }
            LMPTextField {
                label: "密码"
                secret: true
                text: "secret"
                width: parent.width
            }
            LMPTextField {
                label: "验证码"
                text: "12"
                errorText: "验证码应为 6 位数字"
                width: parent.width
            }
            LMPTextField {
                enabled: false
                text: "不可编辑"
                placeholderText: "查找"
                iconName: "search"
                width: parent.width
            }
            LMPTextArea {
                label: "想说的话"
                placeholderText: "写点什么"
                width: parent.width
            }
            LMPComposer {
                placeholderText: "和你的分身聊聊"
                hint: "回车发送，Shift+回车换行"
                width: parent.width
                tools: [
                    LMPIconButton {
                        iconName: "plus"
                        text: "添加附件"
                    }
                ]
            }
            LMPComposer {
                text: "这是一段已经写好的话，\n有两行。"
                width: parent.width
                busy: true
            }
        }

        Column {
            spacing: Theme.space12
            width: (parent.width - parent.spacing) * 0.5

            Heading {
                text: "选择"
            }
            LMPSwitch {
                text: "共享使用情况"
                description: "只含次数与耗时，不含聊天内容"
                width: parent.width
                checked: true
            }
            LMPSwitch {
                text: "减少动效"
                width: parent.width
            }
            LMPSwitch {
                text: "不可用"
                width: parent.width
                checked: true
                enabled: false
            }
            Row {
                spacing: Theme.space16
                LMPCheckBox {
                    text: "同意条款"
                    checked: true
                }
                LMPCheckBox {
                    text: "记住我"
                }
                LMPCheckBox {
                    text: "部分"
                    tristate: true
                    checkState: Qt.PartiallyChecked
                }
                LMPCheckBox {
                    text: "不可用"
                    enabled: false
                }
            }
            Row {
                spacing: Theme.space16
                LMPRadio {
                    text: "跟随系统"
                    checked: true
                }
                LMPRadio {
                    text: "浅色"
                }
                LMPRadio {
                    text: "深色"
                    enabled: false
                }
            }
            Row {
                spacing: Theme.space16
                LMPSegmented {
                    label: "外观"
                    model: ["跟随系统", "浅色", "深色"]
                    currentIndex: 1
                }
                LMPComboBox {
                    label: "大小"
                    model: ["85 %", "100 %", "130 %"]
                    currentIndex: 1
                    width: Theme.dp(140)
                }
            }
            Heading {
                text: "列表"
            }
            Rectangle {
                color: Theme.window
                height: rows.height
                width: Theme.dp(248)
                Column {
                    id: rows
                    width: parent.width
                    LMPRow {
                        iconName: "chat"
                        title: "分身"
                        selected: true
                        width: parent.width
                    }
                    LMPRow {
                        iconName: "clock"
                        title: "历史对话"
                        trailingText: "12"
                        width: parent.width
                    }
                    LMPRow {
                        id: unreadRow
                        avatarText: "林小满"
                        twoLine: true
                        title: "林小满"
                        subtitle: "明天见，记得带伞"
                        trailingText: "昨天"
                        unread: 3
                        width: parent.width
                    }
                    LMPRow {
                        avatarText: "周"
                        twoLine: true
                        title: "一个非常长的名字会在这里被省略掉的"
                        subtitle: "好的"
                        trailingText: "10:24"
                        draft: true
                        width: parent.width
                    }
                    LMPRow {
                        id: waitingRow
                        avatarText: "𠮷田"
                        twoLine: true
                        title: "𠮷田"
                        subtitle: "想请你看一下这个安排"
                        waitingText: "待你决定"
                        selected: true
                        width: parent.width
                    }
                }
            }
            Flow {
                spacing: Theme.space8
                width: parent.width
                LMPChip {
                    text: "中性"
                }
                LMPChip {
                    text: "已完成"
                    tone: LMPChip.Success
                    iconName: "check"
                }
                LMPChip {
                    text: "注意"
                    tone: LMPChip.Warning
                }
                LMPChip {
                    text: "失败"
                    tone: LMPChip.Danger
                }
                LMPChip {
                    text: "关怀"
                    tone: LMPChip.Care
                }
                LMPChip {
                    text: "用到 3 条记忆"
                    iconName: "memory"
                    tone: LMPChip.Accent
                    clickable: true
                }
                LMPChip {
                    text: "省钱模式"
                    iconName: "leaf"
                    clickable: true
                }
            }
            LMPBanner {
                text: "有新版本可用。"
                actionText: "查看"
                secondActionText: "稍后"
                closable: true
            }
            LMPBanner {
                tone: LMPBanner.Success
                text: "已保存。"
            }
            LMPBanner {
                tone: LMPBanner.Warning
                text: "连接已断开，正在用本机保存的内容；恢复之后会自动继续，不需要你做什么。"
                actionText: "立即重连"
            }
            LMPBanner {
                tone: LMPBanner.Danger
                text: "没能发送。"
                actionText: "重试"
            }
            LMPBanner {
                tone: LMPBanner.Care
                text: "如果你正难受，可以先和人说说。"
                actionText: "查看求助资源"
            }
            LMPCard {
                stripe: LMPCard.Approval
                width: parent.width
                LMPText {
                    kind: LMPText.Strong
                    text: "需要你同意"
                }
                LMPText {
                    text: "分身想记住：你下周三要去体检。"
                    width: parent.width
                }
                Row {
                    anchors.right: parent.right
                    spacing: Theme.space8
                    LMPButton {
                        text: "不用"
                    }
                    LMPButton {
                        kind: LMPButton.Primary
                        text: "记住"
                    }
                }
            }
            Row {
                spacing: Theme.space20
                width: parent.width
                LMPEmptyState {
                    iconName: "chat"
                    text: "还没有对话。"
                    actionText: "开始聊聊"
                    width: (parent.width - parent.spacing) / 2
                }
                LMPErrorState {
                    text: "暂时连不上，请检查网络后重试。"
                    width: (parent.width - parent.spacing) / 2
                }
            }
            Flow {
                spacing: Theme.space4
                width: parent.width
                Repeater {
                    model: ["now", "social", "market", "studio", "me", "send", "stop", "plus", "search", "settings", "close", "check", "chevron-down", "chevron-right", "chevron-left", "chevron-up", "copy", "retry", "thumb-up", "thumb-down", "memory", "incognito", "leaf", "warning", "info", "error", "care", "phone", "link", "external", "edit", "trash", "more", "menu", "sidebar", "sun", "moon", "lock", "key", "user", "users", "chat", "code", "image", "clock", "cloud-off", "download", "arrow-down", "logout", "globe", "mail", "eye", "eye-off", "coin", "spark"]
                    delegate: LMPIcon {
                        required property string modelData
                        name: modelData
                        size: 24
                    }
                }
            }
        }
    }
}
