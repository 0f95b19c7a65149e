import QtQuick
import Lumenpair.Kit

/// A message's Markdown, block by block. Its text is one stop for Tab, and each of its buttons is one; Up and Down go
/// from block to block, Tab in a text goes from link to link, Enter opens one.
MarkdownColumn {
    id: root

    property real maximumWidth: Theme.dp(760)

    width: root.maximumWidth

    address: LMPToolTip {
    }
    bars: MarkdownQuoteBars {
    }
    code: MarkdownCode {
    }
    image: MarkdownImage {
    }
    marker: MarkdownMarker {
    }
    ring: LMPFocusRing {
    }
    row: MarkdownBlockItem {
    }
    rule: MarkdownRule {
    }
    table: MarkdownTable {
    }
    text: MarkdownText {
    }
}
