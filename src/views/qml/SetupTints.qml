import QtQuick

/// The colours of setup's views, for grounds that are light or dark. On glass, below which any
/// colour may lie, they are nearly white.
QtObject {
    required property bool isDark
    property bool isGlass: false

    readonly property color ground: isDark ? "#232326" : "#f1f1f4"
    readonly property color text: isDark ? "#ffffff" : "#1d1d1f"
    readonly property color secondary: isGlass ? Qt.rgba(1, 1, 1, 0.82) : isDark ? Qt.rgba(1, 1, 1, 0.66) : Qt.rgba(0, 0, 0, 0.62)
    readonly property color faint: isDark ? Qt.rgba(1, 1, 1, 0.5) : Qt.rgba(0, 0, 0, 0.5)
    readonly property color accent: "#1669e8"
    readonly property color accentText: isGlass ? Qt.rgba(1, 1, 1, 0.95) : isDark ? "#6cb0ff" : "#0b57c9"
    readonly property color focus: isGlass ? "#bcdcff" : isDark ? "#6cb4ff" : "#1669e8"
    readonly property color done: isDark ? "#4cd471" : "#1b7a37"

    readonly property color card: isDark ? Qt.rgba(1, 1, 1, 0.05) : Qt.rgba(1, 1, 1, 0.5)
    readonly property color cardBorder: isDark ? Qt.rgba(1, 1, 1, 0.06) : Qt.rgba(0, 0, 0, 0.06)
    readonly property color raised: isDark ? Qt.rgba(1, 1, 1, 0.11) : Qt.rgba(1, 1, 1, 0.96)
    readonly property color raisedBorder: isDark ? Qt.rgba(1, 1, 1, 0.2) : Qt.rgba(0, 0, 0, 0.1)
    readonly property color divider: isDark ? Qt.rgba(1, 1, 1, 0.16) : Qt.rgba(0, 0, 0, 0.1)

    readonly property color control: isDark ? Qt.rgba(1, 1, 1, 0.16) : Qt.rgba(0, 0, 0, 0.07)
    readonly property color controlHover: isDark ? Qt.rgba(1, 1, 1, 0.2) : Qt.rgba(0, 0, 0, 0.1)
    readonly property color controlPressed: isDark ? Qt.rgba(1, 1, 1, 0.27) : Qt.rgba(0, 0, 0, 0.16)
}
