pragma Singleton

import QtQuick

/// Distances, fonts and tints that the rows share. Points; the panel is 308 of them wide.
QtObject {
    /// Whether there is dark glass below the rows, else light.
    property bool isDark: true

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
    readonly property color highlight: tint(0.1, 0.07)
    readonly property color pressedHighlight: tint(0.16, 0.13)

    readonly property color text: tint(1, 0.85)
    readonly property color secondary: tint(0.58, 0.6)
    readonly property color glyphFill: tint(0.14, 0.08)
    readonly property color glyphHover: tint(0.2, 0.12)
    readonly property color glyphPressed: tint(0.26, 0.17)
    readonly property color glyphOpen: tint(0.9, 0.75)
    readonly property color glyphOpenSymbol: isDark ? "#1c1c1e" : "white"
    readonly property color group: tint(0.06, 0.05)
    readonly property color scrollMark: tint(0.35, 0.35)
    readonly property color accent: "#0a84ff"
    readonly property color meter: "#30b85c"
    readonly property color divider: tint(0.12, 0.1)

    /// White so strong on dark glass, black so strong on light glass.
    function tint(white: real, black: real): color {
        return isDark ? Qt.rgba(1, 1, 1, white) : Qt.rgba(0, 0, 0, black);
    }
}
