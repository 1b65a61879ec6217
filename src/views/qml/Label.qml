import QtQuick

/// One line of text, cut short where it is too long.
Text {
    property bool secondary: false

    color: secondary ? Metrics.secondary : Metrics.text
    // Names in any script begin where the others do.
    horizontalAlignment: Text.AlignLeft
    elide: Text.ElideRight
    maximumLineCount: 1
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
    font.family: Metrics.family
    font.pixelSize: Metrics.textSize
    Accessible.ignored: true
}
