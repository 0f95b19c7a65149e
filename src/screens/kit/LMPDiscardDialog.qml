/// Asked before what was typed into a sheet is lost.

LMPDialog {
    id: root

    signal discarded

    buttons: ["继续填写", "放弃"]
    dangerIndex: 1
    escapeIndex: 0
    text: "关闭后，已填写的内容不会保留。"
    title: "放弃已填写的内容？"

    onChosen: index => {
        if (index === 1)
            root.discarded();
    }
}
