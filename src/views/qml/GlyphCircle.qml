import QtQuick

/// A symbol on a disc, which is filled with the accent colour while what it stands for is chosen.
Rectangle {
    id: root

    required property string symbol
    property bool isSelected: false

    width: Metrics.glyph
    height: Metrics.glyph
    radius: width / 2
    color: isSelected ? Metrics.accent : Metrics.glyphFill

    Symbol {
        anchors.centerIn: parent
        name: root.symbol
        pointSize: 12
        color: root.isSelected ? "white" : Metrics.text
    }
}
