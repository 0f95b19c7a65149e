import QtQuick
import QtQuick.Controls

// The least that a chat window could be: some text, a field and a button.
ApplicationWindow {
    height: 600
    title: "hello"
    visible: true
    width: 900

    Column {
        anchors.centerIn: parent
        spacing: 8

        Label {
            text: "Hello 你好"
        }

        TextField {
            placeholderText: "message"
        }

        Button {
            text: "Send"
        }
    }
}
