import QtQuick

/// Text in the type of the theme.
Text {
    color: Theme.text
    font.pixelSize: Theme.dp(14)
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
}
