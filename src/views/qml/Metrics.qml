pragma Singleton

import QtQuick

/// Distances, fonts and tints that the rows share. Points; the panel is 308 of them wide.
QtObject {
    // Where it is missing, the desktop's own sans serif takes its place.
    readonly property string family: "Inter"
    readonly property int textSize: 13
    readonly property int smallSize: 11

    readonly property int margin: 14
    readonly property int glyphMargin: 12
    readonly property int glyph: 26
    readonly property int gap: 8
    /// Where the names of apps and devices begin.
    readonly property int textColumn: glyphMargin + glyph + gap

    readonly property int highlightInset: 5
    readonly property int highlightRadius: 10
    readonly property color highlight: Qt.rgba(1, 1, 1, 0.1)
    readonly property color pressedHighlight: Qt.rgba(1, 1, 1, 0.16)

    readonly property color text: "white"
    readonly property color secondary: Qt.rgba(1, 1, 1, 0.58)
    readonly property color glyphFill: Qt.rgba(1, 1, 1, 0.14)
    readonly property color accent: "#0a84ff"
    readonly property color meter: "#30b85c"
    readonly property color divider: Qt.rgba(1, 1, 1, 0.12)
}
