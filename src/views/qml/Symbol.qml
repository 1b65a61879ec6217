import QtQuick

/// A named symbol in one colour. Decoration: whoever shows it says what it means.
Image {
    id: root

    required property string name
    property real pointSize: 15
    property color color: Metrics.text

    // A symbol's box is wider than its point size, as a letter's line is.
    readonly property real side: Math.round(pointSize * 1.35)

    width: side
    height: side
    sourceSize: Qt.size(side, side)
    source: name === "" ? "" : "image://symbol/" + encodeURIComponent(name) + "?color=" + encodeURIComponent(color.toString().slice(1))
    Accessible.ignored: true
}
