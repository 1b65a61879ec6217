import QtQuick

/// Text that goes on in further lines, and is never cut.
Text {
    wrapMode: Text.Wrap
    textFormat: Text.PlainText
    horizontalAlignment: Text.AlignLeft
    font.family: Metrics.family
    font.pixelSize: Metrics.textSize
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: text === ""
}
