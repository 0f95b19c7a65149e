import QtQuick

/// Text in one of the nine sizes of the design. Plain text unless `textFormat` is set: what comes from a person or a
/// service is never read as markup by accident.
Text {
    id: root

    enum Kind {
        Caption,
        Label,
        Body,
        Chat,
        Strong,
        H3,
        H2,
        H1,
        Mono
    }

    property int kind: LMPText.Body

    function size(kind: int): int {
        switch (kind) {
        case LMPText.Caption:
            return 12;
        case LMPText.Label:
        case LMPText.Mono:
            return 13;
        case LMPText.Chat:
        case LMPText.H3:
            return 15;
        case LMPText.H2:
            return 17;
        case LMPText.H1:
            return 22;
        }
        return 14;
    }

    function line(kind: int): int {
        switch (kind) {
        case LMPText.Caption:
        case LMPText.Label:
        case LMPText.Mono:
            return 20;
        case LMPText.Chat:
            return 25;
        case LMPText.H3:
            return 24;
        case LMPText.H2:
            return 26;
        case LMPText.H1:
            return 32;
        }
        return 22;
    }

    function strength(kind: int): int {
        switch (kind) {
        case LMPText.Label:
            return Font.Medium;
        case LMPText.Strong:
        case LMPText.H3:
        case LMPText.H2:
        case LMPText.H1:
            return Font.DemiBold;
        }
        return Font.Normal;
    }

    /// As wide as `widest` asks for, or less: so that the last line of a short text is not one lost letter.
    function balanced(widest: real): real {
        const lines = Math.ceil(root.implicitWidth / Math.max(1, widest));
        return Math.min(widest, Math.ceil(root.implicitWidth / lines + (lines > 1 ? 2 * root.font.pixelSize : 0)));
    }

    // Qt tells a screen reader of a text only where it is asked to.
    Accessible.name: root.text
    Accessible.role: Accessible.StaticText
    color: Theme.text
    font.family: root.kind === LMPText.Mono ? Theme.monoFamily : Theme.fontFamily
    font.pixelSize: Theme.sp(root.size(root.kind))
    font.weight: root.strength(root.kind)
    lineHeight: Math.max(Theme.dp(root.line(root.kind)), Math.ceil(root.font.pixelSize * 1.3))
    lineHeightMode: Text.FixedHeight
    linkColor: Theme.link
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
}
