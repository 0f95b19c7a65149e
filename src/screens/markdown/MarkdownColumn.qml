import QtQuick
import Lumenpair.Kit
import Lumenpair.Markdown

/// What the blocks of one message share: the model, what their text begins with, who has the keyboard, and the ways out.
/// MarkdownView adds what each kind of block is drawn with, which refers to this.
MarkdownFlow {
    id: root

    required blocks

    /// The block that Tab reaches.
    property int current: 0
    /// Rich text names no colour and no font of its own; this is where it gets them from.
    readonly property string style: "<style>p,th,td{margin:0;white-space:pre-wrap}" + "a{color:" + Theme.link + "}" + "code{font-family:'"
        + Theme.monoFamily + "';font-size:" + Theme.sp(13) + "px;background-color:" + Theme.sunken + "}" + "b,th,.em{font-weight:600}"
        + "table{border-color:" + Theme.border + "}" + "</style>"

    /// How much lower a bullet stands than its line begins: a line of rich text has its spare height above the text.
    readonly property real drop: Math.max(0, Theme.dp(25) - root.metrics.height)
    readonly property FontMetrics metrics: FontMetrics {
        font.family: Theme.fontFamily
        font.pixelSize: Theme.sp(15)
    }

    property Component address
    property Component bars
    property Component code
    property Component image
    property Component marker
    property Component ring
    property Component rule
    property Component table
    property Component text

    signal linkActivated(url link)
    signal copyRequested(string text)

    function bodyOf(kind: int): Component {
        switch (kind) {
        case MarkdownBlockModel.Code:
            return root.code;
        case MarkdownBlockModel.Table:
            return root.table;
        case MarkdownBlockModel.Image:
            return root.image;
        case MarkdownBlockModel.Rule:
            return root.rule;
        }
        return root.text;
    }

    factor: Theme.factor
}
