import QtQuick

/// A button with a symbol, a title with a line of detail below it, and a chevron.
HoverRow {
    id: root

    required property string title
    required property string detail
    required property string chevron
    property string symbol
    property bool isSelected: false

    label: title
    description: detail

    GlyphCircle {
        id: glyph

        x: Metrics.glyphMargin
        anchors.verticalCenter: parent.verticalCenter
        symbol: root.symbol
        isSelected: root.isSelected
    }

    Column {
        anchors.left: glyph.right
        anchors.leftMargin: Metrics.gap
        anchors.right: arrow.left
        anchors.rightMargin: Metrics.gap
        anchors.verticalCenter: parent.verticalCenter
        spacing: 1

        Label {
            width: parent.width
            text: root.title
        }

        Label {
            width: parent.width
            text: root.detail
            secondary: true
            font.pixelSize: Metrics.smallSize
        }
    }

    Symbol {
        id: arrow

        anchors.right: parent.right
        anchors.rightMargin: Metrics.margin - 3
        anchors.verticalCenter: parent.verticalCenter
        name: root.chevron
        pointSize: 11
        color: Metrics.secondary
    }
}
